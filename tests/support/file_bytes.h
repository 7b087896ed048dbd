#pragma once

#include "core/storage/file_io.h"

#include <QString>
#include <string>

namespace finora::test {

// What a file holds now, read back as the next program to open it would; empty when it is gone.
inline std::string bytesOf(const QString& path)
{
    std::string bytes;
    readWholeFile(path.toStdString(), bytes);
    return bytes;
}

} // namespace finora::test
