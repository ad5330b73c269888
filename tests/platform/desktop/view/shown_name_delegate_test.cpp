#include "platform/desktop/view/file_dialogs.h"
#include "platform/desktop/view/shown_name_delegate.h"
#include "support/test_program.h"

#include <QListView>
#include <QStandardItemModel>
#include <QTreeView>
#include <QtTest>

namespace shown_name_delegate_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString hostile = u"note_\u202egpj.py"_s;
const QString shown = u"note_\u27e8U+202E\u27e9gpj.py"_s;

/// A list of one row of two columns, as it is drawn.
QImage picture(const QStringList& row, bool withSigns)
{
    QStandardItemModel model(1, int(row.size()));
    for (int column = 0; column < row.size(); ++column) {
        model.setItem(0, column, new QStandardItem(row.at(column)));
    }
    QTreeView view;
    view.setModel(&model);
    if (withSigns) {
        view.setItemDelegate(new ShownNameDelegate(&view));
    }
    view.resize(600, 80);
    view.setColumnWidth(0, 300);
    return view.grab().toImage();
}

} // namespace

class ShownNameDelegateTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesHaveSignsAndOtherColumnsHaveNot();
    void ourDialogShowsNamesSo();
};

void ShownNameDelegateTest::namesHaveSignsAndOtherColumnsHaveNot()
{
    QCOMPARE(picture({hostile, u"1\u202f024 KB"_s}, true), picture({shown, u"1\u202f024 KB"_s}, false));
    QVERIFY(picture({hostile, u"1 KB"_s}, true) != picture({hostile, u"1 KB"_s}, false));
    QCOMPARE(picture({u"한국어.txt"_s, u"1 KB"_s}, true), picture({u"한국어.txt"_s, u"1 KB"_s}, false));
}

void ShownNameDelegateTest::ourDialogShowsNamesSo()
{
    OpenPanelOptions options;
    options.canChooseFiles = true;
    options.canChooseDirectories = true;
    FileAndFolderDialog dialog(nullptr, options);
    dialog.show();
    for (const QString& name : {u"listView"_s, u"treeView"_s}) {
        const auto* list = dialog.findChild<QAbstractItemView*>(name);
        QVERIFY(qobject_cast<ShownNameDelegate*>(list->itemDelegate()) != nullptr);
    }
}

const kelm::test::Registered<ShownNameDelegateTest> registered(kelm::test::Toolkit::widgets);

} // namespace shown_name_delegate_test

#include "shown_name_delegate_test.moc"
