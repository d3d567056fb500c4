#pragma once
// Running the project's scripts from tests.
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace quillane::test {

/// What a script said and how it ended.
struct ScriptResult {
    int status = -1; ///< -1 when it did not end by itself
    QString out;
    QString err;
};

/// Runs `program` with `arguments` in the project's folder and waits for its end.
ScriptResult RunScript(const QString& program, const QStringList& arguments,
                       const QProcessEnvironment& environment);
/// Writes an executable shell script.
void WriteScript(const QString& path, const QString& body);
/// Writes a file.
void WriteText(const QString& path, const QString& text);
/// The text of a file; empty when there is none.
QString ReadText(const QString& path);
/// All paths under `folder`, relative to it, sorted.
QStringList FilesUnder(const QString& folder);

} // namespace quillane::test
