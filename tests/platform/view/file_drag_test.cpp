#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/view/file_drag.h"
#include "support/test_program.h"

#include <QMimeData>
#include <QtTest>

namespace file_drag_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class FileDragTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void othersGetURLsAndPaths();
    void namesOfAnyBytesAreTheirBytes();
};

void FileDragTest::othersGetURLsAndPaths()
{
    const auto data = dataOfFiles({QUrl::fromLocalFile(u"/home/me/a b.py"_s), QUrl::fromLocalFile(u"/한글/50%.txt"_s)});
    QCOMPARE(data->data(u"text/uri-list"_s),
             QByteArray("file:///home/me/a%20b.py\r\nfile:///%ED%95%9C%EA%B8%80/50%25.txt\r\n"));
    QCOMPARE(data->text(), u"/home/me/a b.py\n/한글/50%.txt"_s);
}

void FileDragTest::namesOfAnyBytesAreTheirBytes()
{
    const auto data = dataOfFiles({urlOfFile(pathOfNative("/home/me/\xff#?\xed\xa0\x80.txt"))});
    QCOMPARE(data->data(u"text/uri-list"_s), QByteArray("file:///home/me/%FF%23%3F%ED%A0%80.txt\r\n"));
    QCOMPARE(data->text(), u"/home/me/\ufffd#?\ufffd\ufffd\ufffd.txt"_s);
}

const kelm::test::Registered<FileDragTest> registered(kelm::test::Toolkit::gui);

} // namespace file_drag_test

#include "file_drag_test.moc"
