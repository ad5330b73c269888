#include "platform/style/view/icons.h"
#include "support/test_program.h"

#include <QImage>
#include <QPixmap>
#include <QtTest>

#include <vector>

namespace icons_pictures_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What tells a symbol from the others: places on its grid of 24 by 24 that are drawn, and such that are free.
struct Picture
{
    const char* name;
    std::vector<QPointF> drawn;
    std::vector<QPointF> free;
};

const std::vector<Picture>& pictures()
{
    static const std::vector<Picture> pictures{
        // Eight teeth around a ring, and a hole in the hub.
        {"gear",
         {{12, 2.9}, {21.1, 12}, {12, 21.1}, {2.9, 12}, {14.75, 12}},
         {{12, 12}, {12, 7.3}, {3.5, 3.5}, {20.5, 20.5}}},
        // A tab at the upper left, and nothing inside.
        {"folder", {{6, 4.5}, {3, 12}, {21, 12}, {12, 19.5}}, {{12, 12}, {18, 4.5}}},
        {"folder.fill", {{6, 4.5}, {12, 12}, {18, 18}}, {{18, 4.5}, {12, 2}}},
        {"folder.badge.questionmark", {{6, 3.5}, {3, 12}, {18, 20.6}}, {{12, 12}, {21, 18.5}}},
        {"doc", {{13, 3}, {5, 12}, {19, 15}, {12, 21}}, {{12, 13}, {12, 17}, {18.5, 4}}},
        {"doc.text", {{5, 12}, {19, 15}, {12, 13}, {12, 17}}, {{12, 15}, {18.5, 4}}},
        {"doc.on.doc", {{4, 15}, {12, 21}, {20, 12}}, {{9, 17}, {19, 20}}},
        {"chevron.left", {{8.5, 12}, {15.5, 5}, {15.5, 19}}, {{3, 12}, {12, 12}, {15.5, 12}}},
        {"chevron.right", {{15.5, 12}, {8.5, 5}, {8.5, 19}}, {{8.5, 12}, {12, 12}, {21, 12}}},
        {"chevron.down", {{12, 15.5}, {5, 8.5}, {19, 8.5}}, {{12, 8.5}, {12, 12}}},
        {"plus", {{12, 12}, {12, 4}, {12, 7}, {12, 20}, {4, 12}, {20, 12}}, {{7, 7}, {17, 17}}},
        {"minus", {{4, 12}, {12, 12}, {20, 12}}, {{12, 4}, {12, 20}, {7, 7}}},
        {"xmark", {{12, 12}, {6, 6}, {18, 6}, {6, 18}, {18, 18}}, {{12, 4}, {4, 12}, {12, 8}}},
        {"checkmark", {{9.5, 17.5}, {4.5, 12.5}, {19.5, 6.5}}, {{12, 6}, {6, 18}}},
        {"checkmark.circle.fill", {{3, 12}, {12, 3}, {12, 20}, {6, 8}}, {{10.85, 14.9}, {16.2, 9.1}}},
        {"xmark.circle.fill", {{3, 12}, {12, 3}, {12, 20}, {7, 12}}, {{12, 12}, {8.75, 8.75}, {15.25, 8.75}}},
        {"exclamationmark.triangle", {{12, 20}, {12, 11}, {12, 17}}, {{12, 15.2}, {9, 16}, {15, 16}, {4, 6}}},
        {"exclamationmark.triangle.fill", {{8, 17}, {16, 17}, {12, 6}}, {{12, 11}, {12, 17}, {4, 6}}},
        {"square.and.arrow.down", {{12, 3}, {12, 15}, {4, 15}, {20, 15}, {12, 21}}, {{12, 18}, {4, 5}}},
        {"arrow.uturn.backward", {{4, 9}, {8.5, 4.5}, {19.75, 14.25}, {9, 19.5}}, {{4.25, 14.25}, {12, 14}}},
        {"arrow.uturn.forward", {{20, 9}, {15.5, 4.5}, {4.25, 14.25}, {15, 19.5}}, {{19.75, 14.25}, {12, 14}}},
        {"arrow.clockwise", {{4, 12}, {12, 20}, {20, 5}, {20, 12}}, {{12, 12}, {20, 18}}},
        {"arrow.up.right.square", {{4, 12}, {20, 12}, {12, 12}, {15, 9}}, {{9, 9}, {15, 16}}},
        {"arrow.triangle.branch", {{7, 12}, {9.25, 5}, {9.25, 19}, {17, 10}}, {{7, 5}, {7, 19}, {17, 16}}},
        {"magnifyingglass", {{10.5, 3.5}, {3.5, 10.5}, {20.5, 20.5}}, {{10.5, 10.5}, {20, 4}}},
        {"play.fill", {{7, 7}, {7, 17}, {12, 12}, {18, 12}}, {{17, 5}, {17, 19}}},
        {"text.alignleft", {{4, 6}, {20, 6}, {4, 10}, {12, 10}, {4, 14}, {20, 14}, {12, 18}}, {{20, 10}, {20, 18}}},
        {"sidebar.left", {{3, 12}, {21, 12}, {9, 12}}, {{15, 12}, {12, 14.5}, {6, 12}}},
        {"rectangle.split.3x1", {{12, 5}, {3, 12}, {21, 12}, {9, 12}, {15, 12}}, {{12, 12}, {6, 12}}},
        {"rectangle.bottomthird.inset.filled",
         {{3, 12}, {21, 12}, {6.5, 13.5}, {17.5, 13.5}},
         {{9, 9}, {12, 9}, {15, 9}}},
        {"terminal", {{3, 12}, {21, 12}, {10, 12}, {15, 15}}, {{12, 9}, {15, 10}, {7, 12}}},
        {"paintpalette", {{12, 3}, {3, 12}, {7.5, 12}, {14.4, 7.4}}, {{12, 7}, {12, 11}, {19.5, 20}}},
        {"bell", {{12, 3.5}, {7, 11}, {17, 11}, {12, 17.25}}, {{12, 8}, {12, 12}, {3, 6}}},
        {"keyboard", {{2.75, 12}, {21.25, 12}, {6.75, 10}, {17.25, 10}, {12, 14.5}}, {{12, 10}, {12, 12.2}}},
        {"puzzlepiece.extension", {{10.75, 3.5}, {21, 13.75}, {6.75, 13.75}, {10, 20.5}}, {{12, 12}, {3.5, 13.75}}},
        {"graduationcap.fill", {{12, 9.5}, {16, 9.5}, {21, 13}, {8, 17.5}}, {{18, 4}, {3.5, 17}}},
        {"book", {{3, 12}, {21, 12}, {12, 14}, {12, 20.5}}, {{7.5, 12}, {16.5, 12}}},
    };
    return pictures;
}

constexpr int scale = 8;

QImage imageOf(const QString& name)
{
    return icons::pixmap(name, 24 * scale, QColor(Qt::black), 1).toImage().convertToFormat(QImage::Format_ARGB32);
}

bool isDrawn(const QImage& image, const QPointF& place)
{
    const QPoint pixel(qBound(0, qRound(place.x() * scale), image.width() - 1),
                       qBound(0, qRound(place.y() * scale), image.height() - 1));
    return qAlpha(image.pixel(pixel)) > 127;
}

/// The first place of a picture that an image has otherwise, in words; empty when the image shows the picture.
QString difference(const QImage& image, const Picture& picture)
{
    for (const QPointF& place : picture.drawn) {
        if (!isDrawn(image, place)) {
            return u"nothing is drawn at %1, %2"_s.arg(place.x()).arg(place.y());
        }
    }
    for (const QPointF& place : picture.free) {
        if (isDrawn(image, place)) {
            return u"something is drawn at %1, %2"_s.arg(place.x()).arg(place.y());
        }
    }
    return {};
}

} // namespace

/// A symbol is known by its name everywhere; that the name's picture is what it says is held here.
class IconsPicturesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachSymbolShowsItsPictureAndNoOther_data();
    void eachSymbolShowsItsPictureAndNoOther();
    void noTwoSymbolsAreOnePicture();
};

void IconsPicturesTest::eachSymbolShowsItsPictureAndNoOther_data()
{
    QTest::addColumn<QString>("name");
    for (const Picture& picture : pictures()) {
        QTest::newRow(picture.name) << QString::fromLatin1(picture.name);
    }
}

void IconsPicturesTest::eachSymbolShowsItsPictureAndNoOther()
{
    QFETCH(QString, name);
    QVERIFY(icons::has(name));
    const QImage image = imageOf(name);
    for (const Picture& picture : pictures()) {
        const QString differs = difference(image, picture);
        if (name == QLatin1String(picture.name)) {
            QVERIFY2(differs.isEmpty(), qPrintable(differs));
        } else {
            QVERIFY2(!differs.isEmpty(), picture.name);
        }
    }
}

void IconsPicturesTest::noTwoSymbolsAreOnePicture()
{
    const QStringList names = icons::names();
    QList<QImage> images;
    for (const QString& name : names) {
        const QImage image = imageOf(name);
        const qsizetype same = images.indexOf(image);
        QVERIFY2(same < 0, qPrintable(name + u" and "_s + names.value(same)));
        images.append(image);
    }
}

const kelm::test::Registered<IconsPicturesTest> registered(kelm::test::Toolkit::widgets);

} // namespace icons_pictures_test

#include "icons_pictures_test.moc"
