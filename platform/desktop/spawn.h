#pragma once
#include <QByteArray>
#include <QList>
#include <QString>

namespace quillane {

/// Starts a program that outlives this one, in a session of its own, with the arguments as
/// bytes, in `folder` (empty: the current one). Its input and output go nowhere, and nobody
/// waits for it. Failure with words: kFailureNoFile when program or folder is missing,
/// kFailureDenied when it may not be run, kFailureGeneral for any other reason.
void SpawnDetached(const QString& program, const QList<QByteArray>& arguments,
                   const QString& folder = {});

} // namespace quillane
