// Checks that screenshots are real pictures: each file must load, have at
// least the given size, use a fair number of colours and not be one flat
// background. Prints one line per file; exits 1 if any file fails.

#include <QtCore/QCoreApplication>
#include <QtCore/QHash>
#include <QtGui/QImage>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStringList files = app.arguments().mid(1);
    int minWidth = 400;
    int minHeight = 300;
    if (files.size() >= 2 && files.first() == QLatin1String("--min-size")) {
        const QStringList size = files.at(1).split(QLatin1Char('x'));
        minWidth = size.value(0).toInt();
        minHeight = size.value(1).toInt();
        files = files.mid(2);
    }
    int failures = 0;
    for (const QString& file : files) {
        const QImage image = QImage(file).convertToFormat(QImage::Format_RGB32);
        QHash<QRgb, int> histogram;
        for (int y = 0; y < image.height(); ++y) {
            const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x)
                ++histogram[line[x]];
        }
        int dominant = 0;
        for (int count : qAsConst(histogram))
            dominant = qMax(dominant, count);
        const qint64 pixels = qint64(image.width()) * image.height();
        const double background = pixels > 0 ? 100.0 * dominant / pixels : 100.0;
        const bool ok = !image.isNull() && image.width() >= minWidth && image.height() >= minHeight
            && histogram.size() >= 32 && background < 95.0;
        std::printf("png %s %s width=%d height=%d colours=%d background=%.1f%%\n", ok ? "ok" : "BAD",
                    qPrintable(file), image.width(), image.height(), int(histogram.size()), background);
        if (!ok)
            ++failures;
    }
    return failures == 0 && !files.isEmpty() ? 0 : 1;
}
