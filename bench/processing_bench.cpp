// Every operation on a picture of twelve megapixels, the undo copy included and buffers warm,
// against the bare library call into a fresh picture; and on two cores against one.
//
//   bench_processing [word]   measures what has that word in its name
#include "bench_support.h"
#include "imaging/engine.h"
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <libimagequant.h>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

using namespace quillane;

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr int kRounds = 5;
constexpr double kMostRatio = 1.1;
constexpr qint32 kWhite = 0xffffff;

/// Slow waves with noise on them.
Bitmap MakePicture()
{
    QImage pixels(kWidth, kHeight, QImage::Format_RGB32);
    quint32 random = 2463534242u;
    for (int y = 0; y < kHeight; ++y) {
        auto* row = reinterpret_cast<QRgb*>(pixels.scanLine(y));
        for (int x = 0; x < kWidth; ++x) {
            random = random * 1664525u + 1013904223u;
            const auto value = [&](int wave, int shift) {
                return 20 + (wave & 127) + int((random >> shift) & 31);
            };
            row[x] = qRgb(value(x / 9, 8), value(y / 7, 14), value((x + y) / 13, 20));
        }
    }
    return Bitmap(pixels, ColourModel::Rgb, 24);
}

struct Row {
    const char* name;
    const char* reference; ///< what the library is asked to do
    std::function<void(EngineInstance&)> ours;
    std::function<void(const cv::Mat& in)> bare; ///< makes its result afresh
};

cv::Mat TableOf(int step)
{
    cv::Mat table(1, 256, CV_8UC1);
    for (int i = 0; i < 256; ++i) {
        table.at<uchar>(i) = uchar((i * step) & 0xff);
    }
    return table;
}

void BareTable(const cv::Mat& in)
{
    cv::Mat out;
    cv::LUT(in, TableOf(3), out);
}

void BareKernel(const cv::Mat& in)
{
    cv::Mat out;
    cv::Mat kernel = cv::Mat::ones(3, 3, CV_32F) * -0.5;
    kernel.at<float>(1, 1) = 5;
    cv::filter2D(in, out, -1, kernel);
}

void BareEdges(const cv::Mat& in, const cv::Mat& kernel)
{
    cv::Mat wide;
    cv::Mat out;
    cv::filter2D(in, wide, CV_16S, kernel);
    cv::convertScaleAbs(wide, out);
}

void BareWarp(const cv::Mat& in, const cv::Matx23d& places, cv::Size size)
{
    cv::Mat out;
    cv::warpAffine(in, out, places, size, cv::INTER_LINEAR, cv::BORDER_CONSTANT,
                   cv::Scalar::all(255));
}

void BareResize(const cv::Mat& in, cv::Size size, int way)
{
    cv::Mat out;
    cv::resize(in, out, size, 0, 0, way);
}

void BareQuantize(const cv::Mat& in, int most)
{
    cv::Mat rgba;
    cv::cvtColor(in, rgba, cv::COLOR_BGRA2RGBA);
    liq_attr* attributes = liq_attr_create();
    liq_set_max_colors(attributes, most);
    liq_set_speed(attributes, 7);
    liq_image* image = liq_image_create_rgba(attributes, rgba.data, in.cols, in.rows, 0);
    liq_result* result = nullptr;
    if (liq_image_quantize(image, attributes, &result) == LIQ_OK) {
        liq_set_dithering_level(result, 1.0f);
        std::vector<uchar> out(size_t(in.cols) * size_t(in.rows));
        if (liq_write_remapped_image(result, image, out.data(), out.size()) != LIQ_OK) {
            std::abort();
        }
        liq_result_destroy(result);
    }
    liq_image_destroy(image);
    liq_attr_destroy(attributes);
}

void BareEqualize(const cv::Mat& in)
{
    cv::Mat colours;
    cv::Mat out;
    cv::cvtColor(in, colours, cv::COLOR_BGR2YCrCb);
    std::vector<cv::Mat> channels;
    cv::split(colours, channels);
    cv::equalizeHist(channels[0], channels[0]);
    cv::merge(channels, colours);
    cv::cvtColor(colours, out, cv::COLOR_YCrCb2BGR, 4);
}

void BareHue(const cv::Mat& in)
{
    cv::Mat colours;
    cv::Mat out;
    cv::cvtColor(in, colours, cv::COLOR_BGR2HSV_FULL);
    std::vector<cv::Mat> channels;
    cv::split(colours, channels);
    cv::LUT(channels[0], TableOf(5), channels[0]);
    cv::merge(channels, colours);
    cv::cvtColor(colours, out, cv::COLOR_HSV2BGR_FULL, 4);
}

void BareSaturation(const cv::Mat& in)
{
    cv::Mat out;
    const cv::Matx44f mix(1.4f, -0.2f, -0.2f, 0, //
                          -0.2f, 1.4f, -0.2f, 0, //
                          -0.2f, -0.2f, 1.4f, 0, //
                          0, 0, 0, 1);
    cv::transform(in, out, mix);
}

void BareThreshold(const cv::Mat& in)
{
    cv::Mat grey;
    cv::Mat inside;
    cv::Mat out;
    cv::cvtColor(in, grey, cv::COLOR_BGRA2GRAY);
    cv::inRange(grey, 60, 170, inside);
    cv::cvtColor(inside, out, cv::COLOR_GRAY2BGRA);
}

void BareStretch(const cv::Mat& in)
{
    double low = 0;
    double high = 0;
    cv::Mat out;
    cv::minMaxLoc(in.reshape(1), &low, &high);
    in.convertTo(out, -1, 255 / (high - low), -low * 255 / (high - low));
}

void BareScreen(const cv::Mat& in, const cv::Mat& screen)
{
    cv::Mat grey;
    cv::Mat white;
    cv::Mat out;
    cv::cvtColor(in, grey, cv::COLOR_BGRA2GRAY);
    cv::compare(grey, screen, white, cv::CMP_GE);
    cv::cvtColor(white, out, cv::COLOR_GRAY2BGRA);
}

void BareContours(const cv::Mat& in)
{
    cv::Mat grey;
    cv::Mat smooth;
    cv::Mat steps;
    cv::Mat out;
    cv::cvtColor(in, grey, cv::COLOR_BGRA2GRAY);
    cv::blur(grey, smooth, cv::Size(5, 5));
    cv::LUT(smooth, TableOf(1), steps);
    cv::cvtColor(steps, out, cv::COLOR_GRAY2BGRA);
}

void BareMosaic(const cv::Mat& in)
{
    cv::Mat small;
    cv::Mat out;
    cv::resize(in, small, cv::Size(kWidth / 10, kHeight / 10), 0, 0, cv::INTER_AREA);
    cv::resize(small, out, in.size(), 0, 0, cv::INTER_NEAREST);
}

void BareNoise(const cv::Mat& in)
{
    cv::Mat noise(in.size(), CV_8SC4);
    cv::Mat out;
    cv::randu(noise, cv::Scalar::all(-50), cv::Scalar::all(51));
    cv::add(in, noise, out, cv::noArray(), CV_8U);
}

void BareHistogram(const cv::Mat& in)
{
    cv::Mat grey;
    cv::Mat counts;
    cv::cvtColor(in, grey, cv::COLOR_BGRA2GRAY);
    const int channels[] = {0};
    const int sizes[] = {256};
    const float limits[] = {0, 256};
    const float* ranges[] = {limits};
    cv::calcHist(&grey, 1, channels, cv::noArray(), counts, 1, sizes, ranges);
}

void BareUnique(const cv::Mat& in)
{
    std::vector<bool> seen(size_t(1) << 24);
    for (int y = 0; y < in.rows; ++y) {
        const auto* row = in.ptr<quint32>(y);
        for (int x = 0; x < in.cols; ++x) {
            seen[row[x] & 0xffffff] = true;
        }
    }
    if (std::count(seen.begin(), seen.end(), true) == 0) {
        std::abort();
    }
}

void BareText(const cv::Mat& in)
{
    QImage copy =
        QImage(in.data, in.cols, in.rows, qsizetype(in.step), QImage::Format_RGB32).copy();
    QPainter painter(&copy);
    painter.setPen(Qt::red);
    painter.drawText(100, 100, QStringLiteral("Jan 12,2005  3:30:07 PM"));
}

void BareBits(const cv::Mat& in)
{
    const QImage pixels(in.data, in.cols, in.rows, qsizetype(in.step), QImage::Format_RGB32);
    if (pixels.convertToFormat(QImage::Format_Mono).isNull()) {
        std::abort();
    }
}

std::vector<Row> Rows(const Bitmap& source)
{
    const cv::Matx23d turn(0.96, -0.29, 500, 0.29, 0.96, -300);
    const cv::Matx23d slant(1, 0.18, 0, 0, 1, 0);
    const cv::Mat laplacian = (cv::Mat_<float>(3, 3) << -1, -1, -1, -1, 8, -1, -1, -1, -1);
    const cv::Mat screen(kHeight, kWidth, CV_8UC1, cv::Scalar(100));
    const cv::Mat other(kHeight, kWidth, CV_8UC4, cv::Scalar::all(30));
    return {
        {"AddNoise", "randu, add", [](auto& e) { e.AddNoise(200, 0); }, BareNoise},
        {"Average 5", "blur", [](auto& e) { e.Average(5); },
         [](auto& in) {
             cv::Mat out;
             cv::blur(in, out, {5, 5});
         }},
        {"Average 31", "blur", [](auto& e) { e.Average(31); },
         [](auto& in) {
             cv::Mat out;
             cv::blur(in, out, {31, 31});
         }},
        {"Median 3", "medianBlur", [](auto& e) { e.Median(3); },
         [](auto& in) {
             cv::Mat out;
             cv::medianBlur(in, out, 3);
         }},
        {"Median 5", "medianBlur", [](auto& e) { e.Median(5); },
         [](auto& in) {
             cv::Mat out;
             cv::medianBlur(in, out, 5);
         }},
        {"Median 15", "medianBlur", [](auto& e) { e.Median(15); },
         [](auto& in) {
             cv::Mat out;
             cv::medianBlur(in, out, 15);
         }},
        {"Contrast", "LUT", [](auto& e) { e.Contrast(300); }, BareTable},
        {"Flip", "flip", [](auto& e) { e.Flip(); },
         [](auto& in) {
             cv::Mat out;
             cv::flip(in, out, 0);
         }},
        {"Grayscale", "cvtColor", [](auto& e) { e.Grayscale(8); },
         [](auto& in) {
             cv::Mat out;
             cv::cvtColor(in, out, cv::COLOR_BGRA2GRAY);
         }},
        {"HistogramEqualize", "to YCrCb, equalizeHist, back",
         [](auto& e) { e.HistogramEqualize(); }, BareEqualize},
        {"Hue", "to HSV, LUT, back", [](auto& e) { e.Hue(4000); }, BareHue},
        {"Brightness", "LUT", [](auto& e) { e.Brightness(300); }, BareTable},
        {"Invert", "bitwise_not", [](auto& e) { e.Invert(); },
         [](auto& in) {
             cv::Mat out;
             cv::bitwise_not(in, out);
         }},
        {"Saturation", "transform", [](auto& e) { e.Saturation(400); }, BareSaturation},
        {"Reverse", "flip", [](auto& e) { e.Reverse(); },
         [](auto& in) {
             cv::Mat out;
             cv::flip(in, out, 1);
         }},
        {"Mosaic", "resize to the tiles and back", [](auto& e) { e.Mosaic(10); }, BareMosaic},
        {"SpatialFilter Sobel", "Sobel, convertScaleAbs", [](auto& e) { e.SpatialFilter(12); },
         [](auto& in) {
             cv::Mat wide;
             cv::Mat out;
             cv::Sobel(in, wide, CV_16S, 0, 1);
             cv::convertScaleAbs(wide, out);
         }},
        {"SpatialFilter Laplacian", "filter2D, convertScaleAbs",
         [](auto& e) { e.SpatialFilter(8); }, [laplacian](auto& in) { BareEdges(in, laplacian); }},
        {"BinaryFilter erosion", "erode", [](auto& e) { e.BinaryFilter(0); },
         [](auto& in) {
             cv::Mat out;
             cv::erode(in, out, cv::Mat());
         }},
        {"BinaryFilter dilation", "dilate", [](auto& e) { e.BinaryFilter(4); },
         [](auto& in) {
             cv::Mat out;
             cv::dilate(in, out, cv::Mat());
         }},
        {"Posterize", "LUT", [](auto& e) { e.Posterize(8); }, BareTable},
        {"Sharpen", "filter2D", [](auto& e) { e.Sharpen(500); }, BareKernel},
        {"Rotate 90", "rotate", [](auto& e) { e.Rotate(9000, 1, kWhite); },
         [](auto& in) {
             cv::Mat out;
             cv::rotate(in, out, cv::ROTATE_90_CLOCKWISE);
         }},
        {"Rotate 180", "rotate", [](auto& e) { e.Rotate(18000, 1, kWhite); },
         [](auto& in) {
             cv::Mat out;
             cv::rotate(in, out, cv::ROTATE_180);
         }},
        {"Rotate 17", "warpAffine", [](auto& e) { e.Rotate(1700, 1, kWhite); },
         [turn](auto& in) {
             BareWarp(in, turn, {4703, 4039});
         }},
        {"Shear 10", "warpAffine", [](auto& e) { e.Shear(1000, true, kWhite); },
         [slant](auto& in) {
             BareWarp(in, slant, {4529, 3000});
         }},
        {"Emboss", "filter2D", [](auto& e) { e.Emboss(1, 300); }, BareKernel},
        {"IntensityDetect", "to grey, inRange, back", [](auto& e) { e.IntensityDetect(60, 170); },
         BareThreshold},
        {"StretchIntensity", "minMaxLoc, convertTo", [](auto& e) { e.StretchIntensity(); },
         BareStretch},
        {"GammaCorrect", "LUT", [](auto& e) { e.GammaCorrect(150); }, BareTable},
        {"Halftone", "to grey, compare with a ready screen, back",
         [](auto& e) { e.Halftone(1, 4500); }, [screen](auto& in) { BareScreen(in, screen); }},
        {"Resize plain to 50 %", "resize nearest", [](auto& e) { e.Resize(2000, 1500, 0); },
         [](auto& in) {
             BareResize(in, {2000, 1500}, cv::INTER_NEAREST);
         }},
        {"Resize resample to 37 %", "resize area", [](auto& e) { e.Resize(1480, 1110, 2); },
         [](auto& in) {
             BareResize(in, {1480, 1110}, cv::INTER_AREA);
         }},
        {"Resize resample to 130 %", "resize linear", [](auto& e) { e.Resize(5200, 3900, 2); },
         [](auto& in) {
             BareResize(in, {5200, 3900}, cv::INTER_LINEAR);
         }},
        {"Resize bicubic to 70 %", "resize cubic", [](auto& e) { e.Resize(2800, 2100, 4); },
         [](auto& in) {
             BareResize(in, {2800, 2100}, cv::INTER_CUBIC);
         }},
        {"Resize bicubic to 130 %", "resize cubic", [](auto& e) { e.Resize(5200, 3900, 4); },
         [](auto& in) {
             BareResize(in, {5200, 3900}, cv::INTER_CUBIC);
         }},
        {"ChangeColorDepth 1", "the toolkit's conversion",
         [](auto& e) { e.ChangeColorDepth(1, 0, 1); }, BareBits},
        {"ChangeColorDepth 4", "libimagequant", [](auto& e) { e.ChangeColorDepth(4, 0, 1); },
         [](auto& in) { BareQuantize(in, 16); }},
        {"ChangeColorDepth 8", "libimagequant", [](auto& e) { e.ChangeColorDepth(8, 0, 1); },
         [](auto& in) { BareQuantize(in, 256); }},
        {"HistogramContrast", "mean, LUT", [](auto& e) { e.HistogramContrast(300); },
         [](auto& in) {
             cv::mean(in);
             BareTable(in);
         }},
        {"ContourFilter", "to grey, blur, LUT, back",
         [](auto& e) { e.ContourFilter(20, 40, 5, 4); }, BareContours},
        {"FillColor", "setTo", [](auto& e) { e.FillColor(255); },
         [](auto& in) {
             cv::Mat out(in.size(), in.type());
             out.setTo(cv::Scalar::all(9));
         }},
        {"Combine", "add",
         [source](auto& e) { e.Combine(0, 0, kWidth, kHeight, source, 0, 0, 768); },
         [other](auto& in) {
             cv::Mat out;
             cv::add(in, other, out);
         }},
        {"Trim to the inner half", "copyTo", [](auto& e) { e.Trim(500, 400, 3000, 2000); },
         [](auto& in) {
             cv::Mat out;
             in(cv::Rect(500, 400, 3000, 2000)).copyTo(out);
         }},
        {"DrawText", "the toolkit's painter on a copy",
         [](auto& e) { e.DrawText(QStringLiteral("Jan 12,2005  3:30:07 PM"), 100, 100); },
         BareText},
        {"GetHistogram", "to grey, calcHist", [](auto& e) { e.GetHistogram(0); }, BareHistogram},
        {"UniqueColors", "one bit a colour in a plain loop",
         [](auto& e) {
             if (e.UniqueColors() < 2) {
                 std::abort();
             }
         },
         BareUnique},
    };
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const Bitmap picture = MakePicture();
    const QImage& pixels = picture.Pixels();
    const cv::Mat bare(pixels.height(), pixels.width(), CV_8UC4,
                       const_cast<uchar*>(pixels.constBits()), size_t(pixels.bytesPerLine()));
    EngineInstance lead;
    EngineInstance undo;
    bool good = true;
    const int cores = cv::getNumThreads();
    for (const Row& row : Rows(picture)) {
        if (argc > 1 && !std::strstr(row.name, argv[1])) {
            continue;
        }
        const auto run = [&] {
            undo.SetBitmap(lead.Bitmap());
            row.ours(lead);
            lead.SetBitmap(picture);
        };
        lead.SetBitmap(picture);
        run(); // fills the buffers
        const bench::Pair pair = bench::MeasureInTurn(kRounds, run, [&] { row.bare(bare); });
        cv::setNumThreads(1);
        const bench::Pair single = bench::MeasureInTurn(2, run, [] {});
        cv::setNumThreads(cores);
        const QByteArray name = QByteArray(row.name) + " against " + row.reference;
        good = bench::PrintFigure(name.constData(), pair.first.wall, pair.second.wall, "ms",
                                  pair.first.wall / pair.second.wall, bench::Wanted::AtMost,
                                  kMostRatio)
            && good;
        std::printf("    %s on %d cores %.1f ms, on one %.1f ms: %.2f times as fast\n", row.name,
                    cores, pair.first.wall, single.first.wall, single.first.wall / pair.first.wall);
        std::fflush(stdout);
    }
    return good ? 0 : 1;
}
