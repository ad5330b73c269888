#include "platform/style/view/file_icons.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"
#include "support/test_program.h"

#include <QDir>
#include <QFileInfo>
#include <QtTest>

namespace standard_icons_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class StandardIconsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dialogsShowSymbolsOfOurs_data();
    void dialogsShowSymbolsOfOurs();
    void whatPointsTheWayIsTurnedAround();
    void filesAndFoldersHaveTheirs();
};

void StandardIconsTest::dialogsShowSymbolsOfOurs_data()
{
    QTest::addColumn<int>("picture");
    for (const auto picture :
         {QStyle::SP_MessageBoxInformation, QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxCritical,
          QStyle::SP_MessageBoxQuestion, QStyle::SP_FileDialogBack, QStyle::SP_FileDialogToParent,
          QStyle::SP_FileDialogNewFolder, QStyle::SP_FileDialogListView, QStyle::SP_FileDialogDetailedView,
          QStyle::SP_ArrowBack, QStyle::SP_ArrowForward, QStyle::SP_DirIcon, QStyle::SP_FileIcon,
          QStyle::SP_ComputerIcon, QStyle::SP_DriveHDIcon, QStyle::SP_LineEditClearButton}) {
        QTest::newRow(QByteArray::number(picture).constData()) << int(picture);
    }
}

void StandardIconsTest::dialogsShowSymbolsOfOurs()
{
    QFETCH(int, picture);
    const KelmStyle style;
    const QIcon icon = style.standardIcon(QStyle::StandardPixmap(picture), nullptr, nullptr);
    QVERIFY2(icons::has(icon.name()), qPrintable(icon.name()));
    QVERIFY(!icon.pixmap(16).isNull());
    QVERIFY(!style.standardPixmap(QStyle::StandardPixmap(picture), nullptr, nullptr).isNull());
}

void StandardIconsTest::whatPointsTheWayIsTurnedAround()
{
    const KelmStyle style;
    QStyleOption option;
    option.direction = Qt::RightToLeft;
    QCOMPARE(style.standardIcon(QStyle::SP_ArrowBack, &option, nullptr).name(), u"chevron.right"_s);
    QCOMPARE(style.standardIcon(QStyle::SP_ArrowForward, &option, nullptr).name(), u"chevron.left"_s);
    option.direction = Qt::LeftToRight;
    QCOMPARE(style.standardIcon(QStyle::SP_ArrowBack, &option, nullptr).name(), u"chevron.left"_s);
}

void StandardIconsTest::filesAndFoldersHaveTheirs()
{
    const FileIcons icons;
    QCOMPARE(icons.icon(QFileInfo(QDir::tempPath())).name(), u"folder.fill"_s);
    QCOMPARE(icons.icon(QFileInfo(u"/etc/passwd"_s)).name(), u"doc"_s);
    QCOMPARE(icons.icon(QFileInfo(u"/"_s)).name(), u"externaldrive"_s);
    QCOMPARE(icons.icon(QAbstractFileIconProvider::Computer).name(), u"desktopcomputer"_s);
}

const kelm::test::Registered<StandardIconsTest> registered(kelm::test::Toolkit::widgets);

} // namespace standard_icons_test

#include "standard_icons_test.moc"
