#pragma once
// The search window and the acts of a person in it.
#include "core/paths.h"
#include "gui/main_window_fixture.h"
#include "gui/modal_dialog.h"
#include "gui/widgets_support.h"
#include "search/tagged_gif.h"
#include "search/ui/frmBrowserSearch.h"
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

namespace quillane {

inline const QString kSearchSection = QStringLiteral("SearchSettings");

/// The main window over files with a description, and the acts of a person who searches.
class SearchWindowTest : public MainWindowTest {
protected:
    void Tagged(const QString& name, const QByteArray& description)
    {
        WriteWholeFile(folder + name, TaggedGif(description));
    }
    void Cameras()
    {
        Tagged(QStringLiteral("a.gif"), "ISO=100\r\nCity=PARIS\r\n");
        Tagged(QStringLiteral("b.gif"), "ISO=400\r\nCity=Rome\r\n");
        Tagged(QStringLiteral("c.gif"), "ISO=401\r\nCity=Paris France\r\n");
        Tagged(QStringLiteral("d.gif"), {});
        Picture(QStringLiteral("e.bmp"));
    }
    /// Opens the window by its entry and acts in it.
    void InSearch(const std::function<void(QDialog&)>& act)
    {
        InDialog(
            "frmBrowserSearch", [this] { Click("mnuSearchSettings"); }, act);
    }
    static QLineEdit* Box(QDialog& dialog, const char* name) { return In<QLineEdit>(dialog, name); }
    static void Press(QDialog& dialog, const char* name)
    {
        QTest::mouseClick(In<QPushButton>(dialog, name), Qt::LeftButton);
    }
    static void Check(QDialog& dialog, const char* name)
    {
        QTest::keyClick(In<QCheckBox>(dialog, name), Qt::Key_Space);
    }
    static void Choose(QDialog& dialog, const char* name) { In<QAction>(dialog, name)->trigger(); }
    static void TypeRange(QDialog& dialog, const char* low, const char* high)
    {
        Check(dialog, "chkNumeric(0)");
        Retype(Box(dialog, "txtNumericKeyword(0)"), "ISO");
        Retype(Box(dialog, "txtNumericInfo(0)"), low);
        Retype(Box(dialog, "txtNumericInfoHigh(0)"), high);
    }
    QStringList Shown() const
    {
        QStringList names;
        for (const QString& path : session.lbFilTiffs) {
            names.append(LeafName(path));
        }
        return names;
    }
    QString Stored(const char* key) const
    {
        return store.GetSetting(kSearchSection, QLatin1String(key));
    }
};

inline QStringList Names(std::initializer_list<const char*> names)
{
    QStringList list;
    for (const char* name : names) {
        list.append(QLatin1String(name));
    }
    return list;
}

} // namespace quillane
