#include "git/service/credential_detection.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace credential_detection_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class CredentialDetectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachPathSetsItsFlag_data();
    void eachPathSetsItsFlag();
    void pathsAreAskedForInOrderUntilOneIsThere();
    void theHintFollowsTheFlags_data();
    void theHintFollowsTheFlags();
    void filesOnDiskAreSeenAndNotRead();
};

void CredentialDetectionTest::eachPathSetsItsFlag_data()
{
    QTest::addColumn<QStringList>("present");
    QTest::addColumn<QStringList>("executable");
    QTest::addColumn<QString>("flags");
    const QStringList none;
    const auto file = [&](const char* name, const QString& path, const QString& flags) {
        QTest::newRow(name) << QStringList{path} << none << flags;
    };
    const auto tool = [&](const char* name, const QString& path, const QString& flags) {
        QTest::newRow(name) << none << QStringList{path} << flags;
    };
    QTest::newRow("nothing") << none << none << u"---"_s;
    file("ed25519", u"/h/.ssh/id_ed25519"_s, u"S--"_s);
    file("rsa", u"/h/.ssh/id_rsa"_s, u"S--"_s);
    file("ecdsa", u"/h/.ssh/id_ecdsa"_s, u"S--"_s);
    file("dsa counts for nothing", u"/h/.ssh/id_dsa"_s, u"---"_s);
    file("another name counts for nothing", u"/h/.ssh/work_ed25519"_s, u"---"_s);
    file("a public key counts for nothing", u"/h/.ssh/id_rsa.pub"_s, u"---"_s);
    tool("an executable key that is not there", u"/h/.ssh/id_rsa"_s, u"---"_s);
    tool("gh, local", u"/usr/local/bin/gh"_s, u"-G-"_s);
    tool("gh, homebrew", u"/opt/homebrew/bin/gh"_s, u"-G-"_s);
    tool("gh, home", u"/h/.local/bin/gh"_s, u"-G-"_s);
    tool("gh elsewhere", u"/usr/bin/gh"_s, u"---"_s);
    file("gh that cannot be run", u"/usr/local/bin/gh"_s, u"---"_s);
    file("stored credentials", u"/h/.git-credentials"_s, u"--H"_s);
    file("keychain, local", u"/usr/local/share/git-core/git-credential-osxkeychain"_s, u"--H"_s);
    file("keychain, homebrew", u"/opt/homebrew/share/git-core/git-credential-osxkeychain"_s, u"--H"_s);
    QTest::newRow("all") << QStringList{u"/h/.ssh/id_rsa"_s, u"/h/.git-credentials"_s}
                         << QStringList{u"/h/.local/bin/gh"_s} << u"SGH"_s;
}

void CredentialDetectionTest::eachPathSetsItsFlag()
{
    QFETCH(QStringList, present);
    QFETCH(QStringList, executable);
    QFETCH(QString, flags);
    const CredentialStatus status =
        detectCredentials(u"/h"_s, {.exists = [&](const QString& path) { return present.contains(path); },
                                    .isExecutable = [&](const QString& path) { return executable.contains(path); }});
    QCOMPARE(status, (CredentialStatus{flags.contains(u'S'), flags.contains(u'G'), flags.contains(u'H')}));
}

void CredentialDetectionTest::pathsAreAskedForInOrderUntilOneIsThere()
{
    QStringList asked;
    const auto test = [&asked](const QString& path) {
        asked << path;
        return path.endsWith(u"id_rsa") || path.startsWith(u"/opt/homebrew/bin");
    };
    detectCredentials(u"/h"_s, {.exists = test, .isExecutable = test});
    QCOMPARE(asked, (QStringList{u"/h/.ssh/id_ed25519"_s, u"/h/.ssh/id_rsa"_s, u"/usr/local/bin/gh"_s,
                                 u"/opt/homebrew/bin/gh"_s, u"/h/.git-credentials"_s,
                                 u"/usr/local/share/git-core/git-credential-osxkeychain"_s,
                                 u"/opt/homebrew/share/git-core/git-credential-osxkeychain"_s}));
}

void CredentialDetectionTest::theHintFollowsTheFlags_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<QString>("hint");
    for (int flags = 0; flags < 8; ++flags) {
        QTest::addRow("flags %d", flags)
            << flags
            << (flags == 0 ? u"No credentials found — public repos OK, private repos will prompt."_s
                           : u"Authenticated git clone of private repos should work."_s);
    }
}

void CredentialDetectionTest::theHintFollowsTheFlags()
{
    QFETCH(int, flags);
    QTEST((CredentialStatus{(flags & 1) != 0, (flags & 2) != 0, (flags & 4) != 0}.hint()), "hint");
}

void CredentialDetectionTest::filesOnDiskAreSeenAndNotRead()
{
    QTemporaryDir home;
    const auto detect = [&] { return detectCredentials(home.path()).hasSSHKey; };
    QVERIFY(!detect());
    QVERIFY(QDir(home.path()).mkpath(u".ssh"_s));
    QVERIFY(!detect());
    QFile key(home.filePath(u".ssh/id_ecdsa"_s));
    QVERIFY(key.open(QIODevice::WriteOnly));
    key.close();
    QVERIFY(key.setPermissions({}));
    QVERIFY(detect());

    QVERIFY(QDir(home.path()).mkpath(u".local/bin"_s));
    QFile tool(home.filePath(u".local/bin/gh"_s));
    QVERIFY(tool.open(QIODevice::WriteOnly));
    tool.close();
    QVERIFY(tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(detectCredentials(home.path()).hasGitHubCLI);
}

const kelm::test::Registered<CredentialDetectionTest> registered;

} // namespace credential_detection_test

#include "credential_detection_test.moc"
