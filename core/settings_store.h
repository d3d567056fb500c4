#pragma once
#include <QHash>
#include <QString>

namespace quillane {

/// The per-user key-value store: sections of text values in one INI file. A file that is
/// missing, damaged or unreadable is an empty store; it never keeps the program from starting.
class SettingsStore {
public:
    /// file: full path of the INI file; read at once.
    explicit SettingsStore(QString file);

    /// The stored text, or fallback if the key is absent.
    QString GetSetting(const QString& section, const QString& key,
                       const QString& fallback = {}) const;
    bool Contains(const QString& section, const QString& key) const;
    /// Creates or overwrites; reaches the disk with Flush.
    void SaveSetting(const QString& section, const QString& key, const QString& value);
    /// Writes the file atomically if something changed. Keys this program does not know are
    /// kept. False (with the words in lastError) when the file cannot be written.
    bool Flush(QString* lastError = nullptr);
    const QString& File() const { return mFile; }

private:
    void Read();
    QString mFile;
    QHash<QString, QHash<QString, QString>> mSections;
    bool mChanged = false;
};

} // namespace quillane
