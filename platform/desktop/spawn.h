#pragma once
#include <QByteArray>
#include <QList>

namespace quillane {

/// Starts a program that outlives this one, with the arguments as bytes, in `folder` (empty:
/// the current one). Its output goes nowhere. Failure with words when it cannot be started.
void SpawnDetached(const QByteArray& program, const QList<QByteArray>& arguments,
                   const QByteArray& folder);

} // namespace quillane
