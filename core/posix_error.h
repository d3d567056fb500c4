#pragma once
// The system's error numbers in words.
#include "core/failure.h"
#include <QString>

namespace quillane {

/// A path's leaf name for a message: in quotes, cut to a readable length, with control
/// characters and undecodable bytes replaced.
QString ShownName(const QString& path);
/// The Failure for an error number of the system: kFailureNoFile, kFailureDenied or kFailureIo.
/// verb: what was tried, as in "open"; path: on what.
Failure FailureFromErrno(int error, const QString& verb, const QString& path);

/// What a person can do about an error number of a save: a sentence.
QString WriteAdvice(int error);

} // namespace quillane
