#pragma once

// Looking at what the program drew: a PDF's text as pdftotext reads it, a picture's pixels.
#include <QImage>
#include <QProcess>
#include <QString>

namespace finora::test {

// The PDF's text with its layout kept, pages separated by form feeds; empty when unreadable.
inline QString pdfText(const QString& path)
{
    QProcess pdftotext;
    pdftotext.start(QStringLiteral("pdftotext"),
                    {QStringLiteral("-layout"), path, QStringLiteral("-")});
    if (!pdftotext.waitForFinished(30000)) {
        return {};
    }
    return QString::fromUtf8(pdftotext.readAllStandardOutput());
}

// How many pixels have exactly this colour.
inline int pixelsOf(const QImage& image, QRgb colour)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            n += (image.pixel(x, y) & 0xFFFFFF) == (colour & 0xFFFFFF) ? 1 : 0;
        }
    }
    return n;
}

} // namespace finora::test
