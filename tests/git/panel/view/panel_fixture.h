// The source control panel over real repositories, used as a person uses it.
#pragma once

#include "git/panel/view/source_control_view.h"
#include "git/service/git_service.h"
#include "platform/style/view/style.h"
#include "platform/view/plain_button.h"
#include "platform/view/row_list.h"
#include "support/app_state_fixture.h"
#include "support/fake_workspace.h"
#include "support/temporary_repository.h"
#include "workbench/view/controls.h"

#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <QtTest>

namespace kelm::test {

/// A sheet that shows what it was opened for.
class FakeSheet final : public QWidget
{
public:
    FakeSheet(const QString& shownText, const SourceControlSheets::OnClose& close, QWidget* parent)
        : QWidget(parent), text(shownText), onClose(close)
    {
        setObjectName(QStringLiteral("sheet"));
    }

    QString text;
    SourceControlSheets::OnClose onClose;
};

inline SourceControlSheets fakeSheets()
{
    return {.makeDiff = [](const DiffSheet& sheet, GitService&, const SourceControlSheets::OnClose& onClose,
                           QWidget* parent) { return new FakeSheet(sheet.id(), onClose, parent); },
            .makeCommit = [](const CommitSheet& sheet, GitService&, const SourceControlSheets::OnClose& onClose,
                             QWidget* parent) { return new FakeSheet(sheet.id(), onClose, parent); }};
}

/// The rows of a list as text: "# " before a title, the pieces of a row with blanks between, " / " between its lines.
inline QStringList linesOf(const RowList& list)
{
    QStringList lines;
    for (int item = 0; item < list.rows().rowCount(); ++item) {
        if (list.rows().isTitle(item)) {
            lines.append(QStringLiteral("# ") + list.rows().titleOf(item));
            continue;
        }
        const Row row = list.rows().rowAt(item);
        const auto join = [](const QList<RowText>& pieces) {
            QStringList texts;
            for (const RowText& piece : pieces) {
                texts.append(piece.text);
            }
            return texts.join(u' ');
        };
        lines.append(row.secondLine.isEmpty() ? join(row.firstLine)
                                              : join(row.firstLine) + QStringLiteral(" / ") + join(row.secondLine));
    }
    return lines;
}

inline int itemOf(const RowList& list, const QString& line, int from = 0)
{
    return static_cast<int>(linesOf(list).indexOf(line, from));
}

/// Moves the mouse over a row.
inline void hover(RowList& list, int item)
{
    list.scrollTo(list.model()->index(item, 0));
    const QRect place = list.visualRect(list.model()->index(item, 0));
    QTest::mouseMove(list.viewport(), QPoint(place.left() + 3, place.center().y() + 1));
    QTest::mouseMove(list.viewport(), QPoint(place.left() + 5, place.center().y()));
}

/// The help texts of the actions that are shown, in order.
inline QStringList shownActions(const RowList& list)
{
    QStringList helps;
    for (const auto* button : list.viewport()->findChildren<PlainButton*>()) {
        if (button->isVisible()) {
            helps.append(button->toolTip());
        }
    }
    return helps;
}

/// Hovers over the first row that reads `line` and presses one of the buttons that appear.
inline void act(RowList& list, const QString& line, const QString& help, int from = 0)
{
    const int item = itemOf(list, line, from);
    if (item < 0) {
        QFAIL(qPrintable(QStringLiteral("no row '%1' in\n%2").arg(line, linesOf(list).join(u'\n'))));
    }
    hover(list, item);
    clickOn(*list.viewport(), help);
}

inline void clickRow(RowList& list, const QString& line)
{
    const int item = itemOf(list, line);
    QVERIFY2(item >= 0, qPrintable(line));
    const QModelIndex index = list.model()->index(item, 0);
    list.scrollTo(index);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(index).center());
}

struct PanelFixture
{
    TemporaryRepository repo;
    AppStateFixture app;
    QWidget window;
    FakeWorkspace workspace;
    SourceControlView view{app.state, {app.filePanels, app.scheduler, fakeSheets(), &workspace}, &window};

    /// With one commit, "first", of "a.txt", unless the repository is to be empty.
    explicit PanelFixture(bool hasCommit = true)
    {
        if (hasCommit) {
            repo.write(QStringLiteral("a.txt"), "one\n");
            repo.commitAll(QStringLiteral("first"));
        }
        auto* layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(&view);
        window.resize(300, 600);
        QObject::connect(&git(), &GitService::lastErrorChanged, &window,
                         [this] { errors.append(git().lastError().value_or(QString())); });
    }

    QStringList errors;

    GitService& git() { return app.state.git(); }

    /// Shows the panel over the repository as it is now, on a tab.
    void show(SourceControlTab tab = SourceControlTab::changes)
    {
        app.state.setCurrentProject(repo.url());
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        view.setTab(tab);
        dismissError();
    }

    /// The words of a failure are written from the queue.
    QString error()
    {
        QCoreApplication::processEvents();
        return git().lastError().value_or(QString());
    }
    /// Whether a failure since the last dismissal told `words`. A later one may have taken its place: each reading of a
    /// branch without an upstream fails.
    bool wasTold(const QString& words)
    {
        QCoreApplication::processEvents();
        return !errors.filter(words).isEmpty();
    }
    void dismissError()
    {
        QCoreApplication::processEvents();
        errors.clear();
        git().setLastError(std::nullopt);
    }

    /// The list of the tab that is shown.
    RowList& list()
    {
        for (auto* list : view.findChildren<RowList*>()) {
            if (list->isVisible()) {
                return *list;
            }
        }
        qFatal("no list is shown");
    }
    QStringList lines() { return linesOf(list()); }

    QLineEdit& field(const QString& prompt)
    {
        for (auto* field : view.findChildren<QLineEdit*>()) {
            if (field->isVisible() && field->placeholderText() == prompt) {
                return *field;
            }
        }
        qFatal("no field '%s'", qPrintable(prompt));
    }
    void type(const QString& prompt, const QString& text)
    {
        QLineEdit& target = field(prompt);
        target.setFocus();
        target.clear();
        target.insert(text);
    }
    void click(const QString& button) { clickOn(view, button); }
    bool isEnabled(const QString& button) { return visibleButton(view, button)->isEnabled(); }

    /// Waits for the end of a fetch, pull or push.
    void waitForTransfer() { QTRY_VERIFY_WITH_TIMEOUT(!git().isBusy(), 20000); }

    QByteArray output(const QStringList& arguments) const { return repo.git(arguments).trimmed(); }
};

} // namespace kelm::test
