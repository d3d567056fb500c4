#pragma once
#include <QString>
#include <exception>
#include <new>

namespace quillane {

/// Numbers of failures that code asks for by number; any other number is allowed.
enum FailureNumber : qint32 {
    kFailureGeneral = 5,       ///< a call that makes no sense for the state it finds
    kFailureOverflow = 6,      ///< a number does not fit its width
    kFailureIndex = 9,         ///< an index beyond the end
    kFailureDivision = 11,     ///< a division by zero
    kFailureType = 13,         ///< a value of another shape or a text that is no number
    kFailureNoFile = 53,       ///< the file is not there
    kFailureIo = 57,           ///< reading or writing failed
    kFailureDenied = 70,       ///< no permission
    kFailureUnreadable = 1000, ///< content that no reader takes, or that is damaged
    kFailureLimit = 1001,      ///< content beyond a limit of memory, time or nesting
    kFailureWorker = 1002,     ///< the decoding process crashed, hung or broke its word
    kFailureCancelled = 32755, ///< a dialog was cancelled
};

/// The one exception of the program: something that was asked for could not be done.
/// The layer that detects it writes the words, in a sentence the user can act on.
class Failure : public std::exception {
public:
    Failure(qint32 number, QString description, QString source = {});

    qint32 Number() const { return mNumber; }
    const QString& Description() const { return mDescription; }
    /// Who failed: a codec, a service, a file; may be empty.
    const QString& Source() const { return mSource; }
    const char* what() const noexcept override { return mWhat.constData(); }

private:
    qint32 mNumber;
    QString mDescription;
    QString mSource;
    QByteArray mWhat;
};

/// Runs one step and passes over its Failure alone; anything else (memory exhaustion) goes on.
/// Returns whether the step came to its end.
template <typename Step> bool ResumeNext(Step&& step)
{
    try {
        step();
        return true;
    } catch (const Failure&) {
        return false;
    }
}

} // namespace quillane
