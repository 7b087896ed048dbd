#include "gui/common/bulgarian_ui.h"
#include "support/own_folders.h"
#include "support/user.h"

#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// A picture of every window when a test fails, to see what the user would have seen.
class ShotsOnFailure final : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo& info) override
    {
        m_test = QString::fromLatin1(info.name());
        m_saved = false;
    }
    // The first failure of a test shows the windows as they went wrong.
    void OnTestPartResult(const ::testing::TestPartResult& result) override
    {
        if (result.failed() && !m_saved) {
            m_saved = true;
            finora::test::user::saveShots(QStringLiteral("failure"), m_test);
        }
    }
    QString m_test;
    bool m_saved = false;
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir folders;
    finora::test::useOwnFolders(folders.path());
    QApplication app(argc, argv);
    finora::useBulgarian(app); // as the program starts, so tests see what users see
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new ShotsOnFailure);
    finora::test::user::DialogWatch watch;
    return RUN_ALL_TESTS();
}
