#include "e2e/e2e_support.h"

#include <QProcess>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace quillane::test {

ScriptResult RunScript(const QString& program, const QStringList& arguments,
                       const QProcessEnvironment& environment)
{
    constexpr int kLongest = 240'000; // milliseconds; a machine under load is slow
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(QStringLiteral(QUILLANE_SOURCE_FOLDER));
    process.start(program, arguments);
    ScriptResult result;
    const bool ended = process.waitForFinished(kLongest);
    if (!ended) {
        process.terminate();
        process.waitForFinished(10'000);
    }
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    if (ended && process.exitStatus() == QProcess::NormalExit) {
        result.status = process.exitCode();
    }
    return result;
}

void WriteScript(const QString& path, const QString& body)
{
    WriteText(path, "#!/bin/sh\n" + body);
    std::filesystem::permissions(path.toStdString(), std::filesystem::perms::owner_all);
}

void WriteText(const QString& path, const QString& text)
{
    std::ofstream(path.toStdString()) << text.toStdString();
}

QString ReadText(const QString& path)
{
    std::ifstream file(path.toStdString());
    return QString::fromStdString(
        std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()));
}

QStringList FilesUnder(const QString& folder)
{
    QStringList paths;
    const std::filesystem::path root = folder.toStdString();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        paths << QString::fromStdString(entry.path().lexically_relative(root).string());
    }
    paths.sort();
    return paths;
}

} // namespace quillane::test
