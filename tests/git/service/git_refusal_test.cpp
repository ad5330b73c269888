#include "git/service/git_refusal.h"
#include "support/test_program.h"

#include <QtTest>

namespace git_refusal_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

/// Which names are not given to git.
class GitRefusalTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameIsRefusedInOneSentence_data();
    void nameIsRefusedInOneSentence();
};

void GitRefusalTest::nameIsRefusedInOneSentence_data()
{
    QTest::addColumn<GitNameKind>("kind");
    QTest::addColumn<QString>("name");
    QTest::addColumn<std::optional<QString>>("sentence");
    using Text = std::optional<QString>;
    const auto row = [](const char* tag, GitNameKind kind, const QString& name, const Text& sentence = {}) {
        QTest::newRow(tag) << kind << name << sentence;
    };
    row("a branch", GitNameKind::branch, u"feature/한 x"_s);
    row("empty", GitNameKind::branch, u""_s);
    row("a hyphen inside", GitNameKind::branch, u"a-b-"_s);
    row("direction of text", GitNameKind::branch, u"a\u202eb"_s);
    row("option", GitNameKind::branch, u"-f"_s,
        u"The branch name \"-f\" begins with a hyphen, so that git would take it for an option."_s);
    row("one hyphen", GitNameKind::tag, u"-"_s,
        u"The tag name \"-\" begins with a hyphen, so that git would take it for an option."_s);
    row("URL", GitNameKind::url, u"--config=core.sshCommand=touch X;/h:p"_s,
        u"The URL \"--config=core.sshCommand=touch X;/h:p\" begins with a hyphen, so that git would take it for an "
        "option."_s);
    row("a colon in a URL", GitNameKind::url, u"git@host:owner/repo.git"_s);
    row("blanks around a URL", GitNameKind::url, u" https://h/r "_s);
    row("line feed", GitNameKind::remote, u"a\nb"_s,
        u"The remote's name \"a\u27e8U+000A\u27e9b\" holds a control character."_s);
    row("null", GitNameKind::folder, u"a"_s + QChar(0),
        u"The folder name \"a\u27e8U+0000\u27e9\" holds a control character."_s);
    row("C1", GitNameKind::stash, u"a\u0085"_s, u"The stash name \"a\u27e8U+0085\u27e9\" holds a control character."_s);
    row("line separator", GitNameKind::userName, u"a\u2028"_s,
        u"The user name \"a\u27e8U+2028\u27e9\" holds a control character."_s);
    row("a colon in a tag", GitNameKind::tag, u"v1:refs/heads/main"_s,
        u"The tag name \"v1:refs/heads/main\" holds a colon, at which git would take it apart."_s);
    row("address", GitNameKind::userEmail, u"--unset"_s,
        u"The mail address \"--unset\" begins with a hyphen, so that git would take it for an option."_s);
    row("commit", GitNameKind::commit, u"--output=x"_s,
        u"The commit name \"--output=x\" begins with a hyphen, so that git would take it for an option."_s);
    row("a message is no name", GitNameKind::none, u"-m\n"_s);
}

void GitRefusalTest::nameIsRefusedInOneSentence()
{
    QFETCH(GitNameKind, kind);
    QFETCH(QString, name);
    QTEST(refusal(kind, name), "sentence");
}

const kelm::test::Registered<GitRefusalTest> registered;

} // namespace git_refusal_test

#include "git_refusal_test.moc"
