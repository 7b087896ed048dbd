#include "core/model/finora_doc.h"
#include "core/text/cp1251.h"
#include "core/text/password_digest.h"

#include <gtest/gtest.h>

using namespace finora;

TEST(PasswordDigest, IsTheTwoSumsSideBySide)
{
    // "a": 5·97² twice = 94090; 97·11 = 1067, low byte 43, 43² = 1849.
    EXPECT_EQ(passwordDigest("a"), "940901849");
    EXPECT_EQ(passwordDigest("abc"), "960508990");
    EXPECT_EQ(passwordDigest("secret"), "13340520280");
    // Cyrillic bytes count as negative values.
    EXPECT_EQ(passwordDigest(cp1251::fromUtf8OrThrow("парола")), "656533582");
    EXPECT_EQ(passwordDigest(""), "00");
}

TEST(PasswordDigest, CharactersWithTheSameSumsAreAcceptedForEachOther)
{
    // 1 and -1 (byte 0xFF), 'A' and its negative (0xBF): the squares cannot tell them apart.
    EXPECT_EQ(passwordDigest("\x01"), passwordDigest("\xFF"));
    EXPECT_EQ(passwordDigest("A"), passwordDigest("\xBF"));
    EXPECT_NE(passwordDigest("A"), passwordDigest("B"));
}

TEST(DocumentLock, TemporaryUnlockLastsWhileTheDocumentIsOpen)
{
    FixedClock clock(DateTime::fromParts(2025, 1, 1));
    CFinoraDoc doc(clock);
    EXPECT_FALSE(doc.isLocked());
    doc.setLock("secret");
    EXPECT_EQ(doc.lockText(), passwordDigest("secret"));
    EXPECT_TRUE(doc.isLocked());
    doc.setModified(false); // as after a save: a temporary unlock is no change
    EXPECT_FALSE(doc.checkLock("Secret", CFinoraDoc::LockCheck::TemporaryUnlock));
    EXPECT_TRUE(doc.isLocked());
    EXPECT_TRUE(doc.checkLock("secret", CFinoraDoc::LockCheck::TemporaryUnlock));
    EXPECT_FALSE(doc.isLocked());
    EXPECT_EQ(doc.lockText(), passwordDigest("secret")); // still protected in the file
    EXPECT_FALSE(doc.isModified());
}
