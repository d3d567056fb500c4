#pragma once
#include "core/native_path.h"
#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <functional>
#include <sys/types.h>

namespace quillane {

/// How a program ended and what it said.
struct ProgramEnd {
    QString program;
    int code = 0;      ///< exit code
    int signal = 0;    ///< the signal that ended it; 0: it ended by itself
    bool late = false; ///< it took longer than its time and was ended
    QByteArray output; ///< the first megabyte
    QByteArray errors; ///< the same of what it complained about

    bool Good() const { return code == 0 && signal == 0 && !late; }
    /// Which program failed and why: its exit code, with the last line it complained in, or its
    /// crash, or that it took too long.
    QString Words() const;
};

/// A program that runs beside this one, and of which one hears when it ends. It runs on when this
/// object goes. Needs the application object's loop.
class WatchedProgram : public QObject {
    Q_OBJECT
public:
    using Ended = std::function<void(const ProgramEnd& end)>;
    struct Start {
        QString program;             ///< full path
        QList<QByteArray> arguments; ///< as bytes
        QString folder;              ///< to start in; empty: the current one
        int patience = 0;       ///< milliseconds after which it is ended; 0: it may take any time
        bool keepOutput = true; ///< else what it does not write as a complaint goes nowhere
    };
    /// Starts it; Failure as SpawnDetached. The object deletes itself behind `ended`.
    static void Run(const Start& start, Ended ended, QObject* parent);
    ~WatchedProgram() override;

private:
    WatchedProgram(const Start& start, Ended ended, QObject* parent);
    void HasEnded();

    FileHandle mOutput, mErrors, mProcess;
    ProgramEnd mEnd;
    Ended mEnded;
    pid_t mChild = 0;
};

} // namespace quillane
