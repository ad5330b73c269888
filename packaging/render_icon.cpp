// Draws an SVG file to PNG files: render_icon SVG FOLDER SIZE…, each size to FOLDER/SIZE.png.
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char* argv[])
{
    if (argc < 4) {
        std::fprintf(stderr, "usage: render_icon SVG FOLDER SIZE...\n");
        return 2;
    }
    QSvgRenderer drawing(QFile::decodeName(argv[1]));
    if (!drawing.isValid()) {
        std::fprintf(stderr, "render_icon: %s cannot be drawn\n", argv[1]);
        return 1;
    }
    for (int argument = 3; argument < argc; ++argument) {
        const int size = QByteArray(argv[argument]).toInt();
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        drawing.render(&painter, QRectF(0, 0, size, size));
        painter.end();
        const QString file = QStringLiteral("%1/%2.png").arg(QFile::decodeName(argv[2])).arg(size);
        if (!image.save(file)) {
            std::fprintf(stderr, "render_icon: %s cannot be written\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
