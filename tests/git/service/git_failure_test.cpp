#include "git/service/git_failure.h"
#include "support/test_program.h"

#include <QtTest>

namespace git_failure_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

/// What git writes when it fails, and what a person is told of it.
class GitFailureTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sentence_data();
    void sentence();
    void conflictsAreKnown_data();
    void conflictsAreKnown();
    void linesOfNoKnownFormAreStillTold_data();
    void linesOfNoKnownFormAreStillTold();
    void aTextWithoutEndIsReadInNoTime();
};

void GitFailureTest::sentence_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<bool>("hasMore");
    const auto row = [](const char* name, const char* command, const char* text, const char* sentence,
                        bool hasMore = true) {
        QTest::newRow(name) << QString::fromUtf8(command) << QString::fromUtf8(text) << QString::fromUtf8(sentence)
                            << hasMore;
    };
    row("nothing", "fetch", "", "", false);
    row("blanks", "fetch", " \n\n", "", false);
    row("a sentence of the program's own", "", "branch name is empty", "branch name is empty", false);
    row("a line feed behind it is no more", "", "one line\n", "one line", false);
    row("a push that is behind", "push",
        "To /srv/x.git\n ! [rejected]        main -> main (fetch first)\n"
        "error: failed to push some refs to '/srv/x.git'\nhint: Updates were rejected because the remote contains\n",
        "rejected: fetch first");
    row("a push that a hook declines", "push",
        "remote: no pushes on Sundays\nTo /srv/x.git\n ! [remote rejected] main -> main (pre-receive hook declined)\n"
        "error: failed to push some refs to '/srv/x.git'\n",
        "remote rejected: pre-receive hook declined");
    row("a rejection without a reason", "push", " ! [rejected] main -> main\n", "rejected");
    row("a push without an upstream", "push",
        "fatal: The current branch topic has no upstream branch.\nTo push the current branch and set the remote\n",
        "The current branch topic has no upstream branch.");
    row("a pull over changes", "pull --rebase",
        "error: cannot pull with rebase: You have unstaged changes.\nerror: Please commit or stash them.\n",
        "cannot pull with rebase: You have unstaged changes.");
    row("a pull that tells what it fetched", "pull",
        "From /srv/x\n   1a2b3c4..5d6e7f8  main       -> origin/main\nhint: You have divergent branches\n"
        "fatal: Need to specify how to reconcile divergent branches.\n",
        "Need to specify how to reconcile divergent branches.");
    row("nothing to abort", "merge --abort", "fatal: There is no merge to abort (MERGE_HEAD missing).\n",
        "No merge goes on here. A rebase is ended in the terminal: git rebase --continue, or --abort.");
    row("a checkout over changes", "checkout side",
        "error: Your local changes to the following files would be overwritten by checkout:\n\ta.txt\n\tb.txt\n"
        "Please commit your changes or stash them before you switch branches.\nAborting\n",
        "Your local changes to the following files would be overwritten by checkout: a.txt, b.txt");
    row("over many of them", "merge --no-edit side",
        "error: Your local changes to the following files would be overwritten by merge:\n\ta\n\tb\n\tc\n\td\n\te\n"
        "Aborting\n",
        "Your local changes to the following files would be overwritten by merge: a, b, c and 2 more");
    row("over as many as are named", "merge --no-edit side",
        "error: Your local changes to the following files would be overwritten by merge:\n\ta\n\tb\n\tc\n",
        "Your local changes to the following files would be overwritten by merge: a, b, c");
    row("over some of another command, set in with blanks", "merge --no-edit side",
        "error: Your local changes to the following files would be overwritten by merge:\n  a b\nAborting\n",
        "Your local changes to the following files would be overwritten by merge: a b");
    row("a list that is none", "merge --no-edit side", "error: nothing below:\nAborting\n", "nothing below");
    row("a merge with a conflict", "merge --no-edit side",
        "Auto-merging a.txt\nCONFLICT (content): Merge conflict in a.txt\nAutomatic merge failed; fix conflicts\n",
        "Merge conflict in a.txt");
    row("a rebase with a conflict", "pull --rebase",
        "Rebasing (1/2)\rerror: could not apply 1a2b3c4... words\nhint: Resolve all conflicts manually\n",
        "could not apply 1a2b3c4... words");
    row("a commit amid a conflict", "commit -m x",
        "error: Committing is not possible because you have unmerged files.\nhint: Fix them up\n"
        "fatal: Exiting because of an unresolved conflict.\n",
        "Committing is not possible because you have unmerged files.");
    row("a commit of nothing staged", "commit -m x",
        "On branch main\nChanges not staged for commit:\n\tmodified:   a.txt\n\n"
        "no changes added to commit (use \"git add\" and/or \"git commit -a\")\n",
        "Nothing is staged: no changes added to commit.");
    row("a commit of nothing at all", "commit -m x", "On branch main\nnothing to commit, working tree clean\n",
        "There is nothing to commit, working tree clean.");
    row("a commit beside new files", "commit -m x",
        "On branch main\nUntracked files:\n\tb\n\nnothing added to commit but untracked files present (use \"git add\" "
        "to track)\n",
        "Nothing is staged: nothing added to commit but untracked files present.");
    row("an amendment that leaves nothing", "commit --amend --no-edit",
        "On branch main\nNo changes\nYou asked to amend the most recent commit, but doing so would make\nit empty.\n",
        "Amending would leave the last commit empty.");
    row("a commit by nobody", "commit -m x",
        "Author identity unknown\n\n*** Please tell me who you are.\n\nRun\n\n  git config --global user.email\n"
        "fatal: no email was given and auto-detection is disabled\n",
        "git does not know who commits: set user.name and user.email.");
    row("a commit that cannot be signed", "commit -m x",
        "error: gpg failed to sign the data:\n(no output)\nfatal: failed to write commit object\n",
        "gpg failed to sign the data");
    row("a hook's own words", "commit -m x", "a.txt: trailing blanks\nb.txt: tab\n", "a.txt: trailing blanks");
    row("a lock", "add -A",
        "fatal: Unable to create '/r/.git/index.lock': File exists.\n\nAnother git process seems to be running\n",
        "Another git is at work here, or has left its lock: /r/.git/index.lock.");
    row("a discarded file that git does not know", "checkout -- new file.txt",
        "error: pathspec 'new file.txt' did not match any file(s) known to git\n",
        "git has no version of new file.txt to go back to.");
    row("one with a quote in its name", "checkout -- it's",
        "error: pathspec 'it's' did not match any file(s) known to git\n", "git has no version of it's to go back to.");
    row("a branch that is not there", "checkout gone",
        "error: pathspec 'gone' did not match any file(s) known to git\n", "There is no branch gone.");
    row("a branch that is not merged", "branch -d side",
        "error: The branch 'side' is not fully merged.\nIf you are sure you want to delete it, run 'git branch -D\n",
        "The branch 'side' is not fully merged.");
    row("a host that is not there", "fetch",
        "fatal: unable to access 'https://example.invalid/x/': Could not resolve host: example.invalid\n",
        "unable to access 'https://example.invalid/x/': Could not resolve host: example.invalid");
    row("ssh has the reason", "fetch",
        "Warning: Permanently added 'h' to the list of known hosts.\ngit@h: Permission denied (publickey).\n"
        "fatal: Could not read from remote repository.\n\nPlease make sure you have the correct access rights\n",
        "git@h: Permission denied (publickey).");
    row("nobody else has", "fetch", "fatal: Could not read from remote repository.\n\nPlease make sure\n",
        "Could not read from remote repository.");
    row("a hunk that does not fit", "apply --cached -",
        "error: patch failed: a.txt:1\nerror: a.txt: patch does not apply\n",
        "The hunk does not fit what is there now.");
    row("another language", "fetch", "힌트: 이것\n치명적: 원격 저장소가 없습니다\n", "원격 저장소가 없습니다");
    row("hints alone", "fetch", "hint: only this\n", "hint: only this", false);
    row("lines of the other system", "fetch", "error: bad\r\nhint: worse\r\n", "bad");
    row("progress before it", "clone", "Receiving objects: 1%\rReceiving objects: 2%\rfatal: early EOF\n", "early EOF");
    row("a line of nothing but a bracket", "push", " ! [", "! [", false);
}

void GitFailureTest::sentence()
{
    QFETCH(QString, command);
    QFETCH(QString, text);
    const GitFailure failure{.command = command.split(u' ', Qt::SkipEmptyParts), .text = text};
    QTEST(failure.sentence(), "sentence");
    QTEST(failure.hasMore(), "hasMore");
}

void GitFailureTest::conflictsAreKnown_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isAboutConflicts");
    QTest::newRow("a merge") << u"Auto-merging a\nCONFLICT (add/add): Merge conflict in a\n"_s << true;
    QTest::newRow("a rebase") << u"error: could not apply 1a2b3c4... x\n"_s << true;
    QTest::newRow("a pull amid one") << u"error: Pulling is not possible because you have unmerged files.\n"_s << true;
    QTest::newRow("another") << u"error: Your local changes would be overwritten by merge:\n\ta\n"_s << false;
    QTest::newRow("none") << QString() << false;
}

void GitFailureTest::conflictsAreKnown()
{
    QFETCH(QString, text);
    QTEST((GitFailure{.command = {u"merge"_s}, .text = text}.isAboutConflicts()), "isAboutConflicts");
}

void GitFailureTest::linesOfNoKnownFormAreStillTold_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("text");
    QTest::newRow("one quote") << u"checkout x"_s << u"error: pathspec 'x did not match any file(s)\n"_s;
    QTest::newRow("no quote") << u"checkout x"_s << u"error: pathspec x did not match any file(s)\n"_s;
    QTest::newRow("nothing in the quotes") << u"checkout x"_s << u"error: '' did not match any file(s)\n"_s;
    QTest::newRow("brackets the wrong way round") << u"push"_s << u" ! [rejected] main )(\n"_s;
    QTest::newRow("one bracket") << u"push"_s << u" ! [rejected] main ( x\n"_s;
    QTest::newRow("the other") << u"push"_s << u" ! [rejected] main ) x\n"_s;
    QTest::newRow("a kind of nothing") << u"push"_s << u" ! [] main\n"_s;
    QTest::newRow("a conflict of nothing") << u"merge side"_s << u"CONFLICT ("_s;
    QTest::newRow("a conflict without a colon") << u"merge side"_s << u"CONFLICT (content) a"_s;
    QTest::newRow("a sign alone") << u"fetch"_s << u"error: "_s;
    QTest::newRow("colons alone") << u"fetch"_s << u"error: ::"_s;
    QTest::newRow("brackets alone") << u"commit"_s << u" (nothing to commit)"_s;
}

void GitFailureTest::linesOfNoKnownFormAreStillTold()
{
    QFETCH(QString, command);
    QFETCH(QString, text);
    const GitFailure failure{.command = command.split(u' ', Qt::SkipEmptyParts), .text = text};
    QVERIFY(!failure.sentence().isEmpty());
}

void GitFailureTest::aTextWithoutEndIsReadInNoTime()
{
    const GitFailure line{.text = QString(1 << 22, u'x')};
    QCOMPARE(line.sentence(), QString(GitFailure::mostSentenceUnits, u'x'));
    const GitFailure lines{.text = QString(1 << 22, u'\n') + u"error: far behind"_s};
    QCOMPARE(lines.sentence(), QString());
}

const kelm::test::Registered<GitFailureTest> registered;

} // namespace git_failure_test

#include "git_failure_test.moc"
