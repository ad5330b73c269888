#include "git/panel/view/branch_row.h"
#include "git/panel/view/commit_row.h"
#include "git/panel/view/file_status_row.h"
#include "git/panel/view/remote_row.h"
#include "git/panel/view/stash_row.h"
#include "git/panel/view/tag_row.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"
#include "support/test_program.h"

#include <QtTest>

namespace row_contents_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

namespace {

/// Makes a row whose actions write their names into a list.
using MakeRow = std::function<Row(QStringList& done)>;
using Change = std::optional<GitFileChange>;

std::function<void()> noting(QStringList& done, const QString& name)
{
    return [&done, name] { done.append(name); };
}

QString nameOf(const Tint& tint)
{
    const std::pair<Tint, QString> names[] = {{SystemColor::red, u"red"_s},       {SystemColor::orange, u"orange"_s},
                                              {SystemColor::yellow, u"yellow"_s}, {SystemColor::green, u"green"_s},
                                              {SystemColor::blue, u"blue"_s},     {Tint::accent(), u"accent"_s},
                                              {Tint::primary(), u"primary"_s},    {Tint::secondary(), u"secondary"_s}};
    for (const auto& [each, name] : names) {
        if (each == tint) {
            return name;
        }
    }
    return u"another colour"_s;
}

QString nameOf(const QFont& font)
{
    const bool isMonospaced = font.families() == style::monospaced(12).families();
    return u"%1%2 %3"_s
        .arg(isMonospaced ? u"monospaced"_s : u"interface"_s, font.weight() == QFont::Normal ? u""_s
                                                              : font.weight() == QFont::Bold ? u" bold"_s
                                                                                             : u" of another weight"_s)
        .arg(font.pixelSize());
}

/// A piece of a line as "text|colour|font".
QStringList described(const QList<RowText>& pieces)
{
    QStringList lines;
    for (const RowText& piece : pieces) {
        lines.append(piece.text + u'|' + nameOf(piece.tint) + u'|' + nameOf(piece.font));
    }
    return lines;
}

/// An action as "symbol|help".
QStringList described(const QList<RowAction>& actions)
{
    QStringList lines;
    for (const RowAction& action : actions) {
        lines.append(action.symbol + u'|' + action.help);
    }
    return lines;
}

Row fileRow(QStringList& done, Change staged, Change unstaged, bool isStagedList, bool isDiscardable = true)
{
    FileStatusRow row{.file = {.id = {}, .path = u"src/a b.txt"_s, .staged = staged, .unstaged = unstaged},
                      .staged = isStagedList,
                      .onClickDiff = noting(done, u"diff"_s),
                      .onUnstage = noting(done, u"unstage"_s),
                      .onStage = noting(done, u"stage"_s)};
    if (isDiscardable) {
        row.onDiscard = noting(done, u"discard"_s);
    }
    return row.content();
}

Row branchRow(QStringList& done, bool isCurrent, const std::optional<QString>& upstream)
{
    return BranchRow{
        .branch = {.id = {}, .name = u"topic"_s, .isRemote = false, .isCurrent = isCurrent, .upstream = upstream},
        .isCurrent = isCurrent,
        .onCheckout = noting(done, u"checkout"_s),
        .onMerge = noting(done, u"merge"_s),
        .onDelete = noting(done, u"delete"_s)}
        .content();
}

Row tagRow(QStringList& done, const std::optional<QString>& annotation, const std::optional<QString>& sha)
{
    return TagRow{.tag = {.id = {}, .name = u"v1"_s, .annotation = annotation, .sha = sha},
                  .onPush = noting(done, u"push"_s),
                  .onDelete = noting(done, u"delete"_s)}
        .content();
}

} // namespace

/// What each kind of row shows, in which colours and type, and what it offers.
class RowContentsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRowShowsAndOffersItsOwn_data();
    void aRowShowsAndOffersItsOwn();
    void aFileOfTheOtherListHasItsOtherChange();
    void aFileWithNothingToDiscardIsOnlyStaged();
    void whatIsNotSeenHasASign();
    void aRemoteIsEditedFromItsURL();

private:
    static void addFileRows();
};

void RowContentsTest::aRowShowsAndOffersItsOwn_data()
{
    QTest::addColumn<MakeRow>("make");
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QStringList>("firstLine");
    QTest::addColumn<QStringList>("secondLine");
    QTest::addColumn<QStringList>("actions");
    // What a click and then each of the actions does.
    QTest::addColumn<QStringList>("done");
    addFileRows();

    const auto row = [](const char* name, const MakeRow& make, const QString& symbol, const QStringList& firstLine,
                        const QStringList& secondLine, const QStringList& actions, const QStringList& done) {
        QTest::newRow(name) << make << symbol << firstLine << secondLine << actions << done;
    };
    row("commit",
        [](QStringList& done) {
            return CommitRow{.commit = {.id = u"0123456789abcdef0123456789abcdef01234567"_s,
                                        .author = u"A U Thor"_s,
                                        .date = u"2024-05-06"_s,
                                        .summary = u"Mend it"_s},
                             .onClick = noting(done, u"commit"_s)}
                .content();
        },
        {}, {u"0123456|orange|monospaced 11"_s, u"Mend it|primary|interface 12"_s},
        {u"A U Thor|secondary|interface 11"_s, u"2024-05-06|secondary|interface 11"_s}, {}, {u"commit"_s});

    const QStringList branchActions{u"arrow.right.circle|Checkout"_s, u"arrow.triangle.merge|Merge into current"_s,
                                    u"trash|Delete"_s};
    const QStringList branchDone{u"checkout"_s, u"merge"_s, u"delete"_s};
    const QString branchName = u"topic|primary|interface 12"_s;
    const QString upstream = u"origin/topic|secondary|interface 11"_s;
    row("current branch", [](QStringList& done) { return branchRow(done, true, {}); },
        u"checkmark.circle.fill|accent"_s, {branchName}, {}, {}, {});
    row("current branch with an upstream", [](QStringList& done) { return branchRow(done, true, u"origin/topic"_s); },
        u"checkmark.circle.fill|accent"_s, {branchName, upstream}, {}, {}, {});
    row(
        "branch", [](QStringList& done) { return branchRow(done, false, {}); }, u"circle|secondary"_s, {branchName}, {},
        branchActions, branchDone);
    row(
        "branch with an upstream", [](QStringList& done) { return branchRow(done, false, u"origin/topic"_s); },
        u"circle|secondary"_s, {branchName, upstream}, {}, branchActions, branchDone);
    row("remote branch",
        [](QStringList& done) {
            return RemoteBranchRow{
                .branch = {.id = {}, .name = u"origin/topic"_s, .isRemote = true, .isCurrent = false, .upstream = {}},
                .onCheckout = noting(done, u"checkout"_s)}
                .content();
        },
        u"cloud|secondary"_s, {u"origin/topic|primary|interface 12"_s}, {},
        {u"arrow.right.circle|Checkout (create local tracking branch)"_s}, {u"checkout"_s});

    row("stash",
        [](QStringList& done) {
            return StashRow{.stash = {.id = 1, .label = u"stash@{1}"_s, .message = u"WIP on main"_s},
                            .onApply = noting(done, u"apply"_s),
                            .onPop = noting(done, u"pop"_s),
                            .onDrop = noting(done, u"drop"_s)}
                .content();
        },
        {}, {u"WIP on main|primary|interface 12"_s}, {u"stash@{1}|secondary|monospaced 11"_s},
        {u"arrow.down.right.circle|Apply (keep stash)"_s, u"tray.and.arrow.up|Pop (apply + drop)"_s, u"trash|Drop"_s},
        {u"apply"_s, u"pop"_s, u"drop"_s});

    const QStringList tagActions{u"arrow.up.circle|Push tag"_s, u"trash|Delete tag"_s};
    const QStringList tagDone{u"push"_s, u"delete"_s};
    const QString tagName = u"v1|primary|interface 12"_s;
    row(
        "tag", [](QStringList& done) { return tagRow(done, u"First"_s, u"0123456789"_s); }, u"tag.fill|secondary"_s,
        {tagName, u"0123456|secondary|monospaced 11"_s}, {u"First|secondary|interface 11"_s}, tagActions, tagDone);
    row(
        "tag of no more than a name", [](QStringList& done) { return tagRow(done, {}, {}); }, u"tag.fill|secondary"_s,
        {tagName}, {}, tagActions, tagDone);

    row("remote",
        [](QStringList& done) {
            return RemoteRow{
                .remote = {.id = {}, .name = u"origin"_s, .url = u"https://h/r.git"_s},
                .onRemove = noting(done, u"remove"_s),
                .onSetURL = {},
                .onEdit =
                    [&done](const std::optional<QString>& url) { done.append(u"edit "_s + url.value_or(u"(none)"_s)); }}
                .content();
        },
        u"network|secondary"_s, {u"origin|primary|interface 12"_s}, {u"https://h/r.git|secondary|monospaced 11"_s},
        {u"pencil|Edit URL"_s, u"trash|Remove remote"_s}, {u"edit https://h/r.git"_s, u"remove"_s});
}

void RowContentsTest::addFileRows()
{
    struct Mark
    {
        const char* name;
        Change change;
        QString letter;
    };
    const Mark marks[] = {
        {"modified", GitFileChange::modified, u"M|yellow"_s},     {"added", GitFileChange::added, u"A|green"_s},
        {"deleted", GitFileChange::deleted, u"D|red"_s},          {"renamed", GitFileChange::renamed, u"R|blue"_s},
        {"copied", GitFileChange::copied, u"C|blue"_s},           {"untracked", GitFileChange::untracked, u"U|green"_s},
        {"conflicted", GitFileChange::conflicted, u"!|orange"_s}, {"unchanged", std::nullopt, u"·|yellow"_s}};
    for (const Mark& mark : marks) {
        const QStringList line{mark.letter + u"|interface bold 10"_s, u"src/a b.txt|primary|monospaced 12"_s};
        QTest::addRow("%s file, staged", mark.name)
            << MakeRow([change = mark.change](QStringList& done) { return fileRow(done, change, {}, true); })
            << QString() << line << QStringList() << QStringList{u"minus.circle|Unstage"_s}
            << QStringList{u"diff"_s, u"unstage"_s};
        QTest::addRow("%s file", mark.name)
            << MakeRow([change = mark.change](QStringList& done) { return fileRow(done, {}, change, false); })
            << QString() << line << QStringList()
            << QStringList{u"plus.circle|Stage"_s, u"arrow.uturn.backward.circle|Discard"_s}
            << QStringList{u"diff"_s, u"stage"_s, u"discard"_s};
    }
}

void RowContentsTest::aRowShowsAndOffersItsOwn()
{
    QFETCH(MakeRow, make);
    QFETCH(QString, symbol);
    QFETCH(QStringList, firstLine);
    QFETCH(QStringList, secondLine);
    QFETCH(QStringList, actions);
    QFETCH(QStringList, done);
    QStringList ran;
    const Row row = make(ran);
    QCOMPARE(row.symbol.isEmpty() ? QString() : row.symbol + u'|' + nameOf(row.symbolTint), symbol);
    QCOMPARE(described(row.firstLine), firstLine);
    QCOMPARE(described(row.secondLine), secondLine);
    QCOMPARE(described(row.actions), actions);
    QVERIFY(row.symbol.isEmpty() || icons::has(row.symbol));
    QVERIFY(!row.makeEditor);
    if (row.onClick) {
        row.onClick();
    }
    for (const RowAction& action : row.actions) {
        QVERIFY2(icons::has(action.symbol), qPrintable(action.symbol));
        action.run();
    }
    QCOMPARE(ran, done);
}

void RowContentsTest::aFileOfTheOtherListHasItsOtherChange()
{
    QStringList done;
    const auto letter = [&done](Change staged, Change unstaged, bool isStagedList) {
        const RowText piece = fileRow(done, staged, unstaged, isStagedList).firstLine.first();
        return piece.text + u'|' + nameOf(piece.tint);
    };
    QCOMPARE(letter(GitFileChange::added, GitFileChange::deleted, true), u"A|green"_s);
    QCOMPARE(letter(GitFileChange::added, GitFileChange::deleted, false), u"D|red"_s);
    QCOMPARE(letter({}, GitFileChange::renamed, true), u"R|blue"_s);
    QCOMPARE(letter(GitFileChange::conflicted, {}, false), u"!|orange"_s);
}

void RowContentsTest::aFileWithNothingToDiscardIsOnlyStaged()
{
    QStringList done;
    QCOMPARE(described(fileRow(done, {}, GitFileChange::untracked, false, false).actions),
             QStringList{u"plus.circle|Stage"_s});
}

void RowContentsTest::whatIsNotSeenHasASign()
{
    FileStatusRow file{};
    file.file.path = u"\"a\\nb\" -> \"\\351\""_s;
    file.file.staged = GitFileChange::renamed;
    file.staged = true;
    const QString names = u"a\u27e8U+000A\u27e9b -> \u27e8E9\u27e9"_s;
    QCOMPARE(file.content().firstLine.last().text, names);
    QCOMPARE(file.content().help, names + u" (renamed)"_s);

    const QString name = u"main\u200b"_s;
    const QString shown = u"main\u27e8U+200B\u27e9"_s;
    BranchRow branch{};
    branch.branch.name = name;
    branch.branch.upstream = name;
    QCOMPARE(branch.content().firstLine.first().text, shown);
    QCOMPARE(branch.content().firstLine.last().text, shown);
    QCOMPARE(branch.content().help, shown + u", follows "_s + shown);
    RemoteBranchRow remoteBranch{};
    remoteBranch.branch.name = name;
    QCOMPARE(remoteBranch.content().firstLine.first().text, shown);
    TagRow tag{};
    tag.tag.name = name;
    QCOMPARE(tag.content().help, shown);
    RemoteRow remote{};
    remote.remote.name = name;
    remote.remote.url = name;
    QCOMPARE(remote.content().help, shown + u'\n' + shown);
    StashRow stash{};
    stash.stash.message = name;
    QCOMPARE(stash.content().firstLine.first().text, shown);
}

void RowContentsTest::aRemoteIsEditedFromItsURL()
{
    RemoteRow row{.remote = {.id = {}, .name = u"origin"_s, .url = u"u"_s},
                  .onRemove = {},
                  .onSetURL = {},
                  .editingURL = u""_s,
                  .onEdit = {}};
    // An address of no letters is an address that is edited.
    QVERIFY(row.content().makeEditor);
    row.editingURL = std::nullopt;
    QVERIFY(!row.content().makeEditor);
}

const kelm::test::Registered<RowContentsTest> registered(kelm::test::Toolkit::widgets);

} // namespace row_contents_test

#include "row_contents_test.moc"
