// A program that copies to and pastes from the display's clipboard as the viewer does, for tests
// with other programs at the other end.
//   copy FILE [ellipse]   copies the picture, or an ellipse in it, and stays until its input ends
//   paste FILE            saves what is on the clipboard as PNG, or tells why not
#include "core/failure.h"
#include "imaging/engine.h"
#include "imaging/worker/worker_host.h"
#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTextStream>
#include <QWindow>
#include <unistd.h>

int main(int argc, char** argv)
{
    using namespace quillane;
    QGuiApplication application(argc, argv);
    worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
    const QStringList words = QGuiApplication::arguments();
    QTextStream out(stdout);
    EngineInstance lead;
    try {
        if (words.size() == 3 && words.at(1) == QLatin1String("paste")) {
            lead.PasteFromClipboard(0);
            constexpr qint16 kPng = 75;
            lead.Save(words.at(2), kPng, 0, kBestQuality, kSaveReplace);
            out << "pasted " << lead.BitmapWidth() << ' ' << lead.BitmapHeight() << Qt::endl;
            return 0;
        }
        if (words.size() >= 3 && words.at(1) == QLatin1String("copy")) {
            lead.Load(words.at(2), 0, 0);
            if (words.size() == 4) {
                lead.SetRegionEllipse(0, 0, lead.BitmapWidth(), lead.BitmapHeight());
            }
            lead.CopyToClipboard(0);
            out << "copied" << Qt::endl;
            QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
            QObject::connect(&input, &QSocketNotifier::activated, &application,
                             &QGuiApplication::quit);
            return QGuiApplication::exec();
        }
    } catch (const Failure& failure) {
        out << "failed " << failure.Number() << ' ' << failure.Description() << Qt::endl;
        return 1;
    }
    return 2;
}
