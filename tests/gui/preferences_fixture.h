#pragma once
// A person in front of the preferences.
#include "main_window_fixture.h"
#include "modal_dialog.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

namespace quillane {

/// The tabs, in their order.
enum PreferencesTab { kFileTab, kImagingTab, kToolsTab, kApplicationsTab };

class PreferencesWindowTest : public MainWindowTest {
protected:
    /// Opens the preferences from the menu and acts in them; what is open after that is cancelled.
    void Preferences(const std::function<void(QDialog&)>& act)
    {
        InDialog(
            "frmBrowserPreferences", [this] { Click("mnuMainFilePreferences"); }, act);
    }
    static void Close(QDialog& dialog)
    {
        QTest::mouseClick(In<QPushButton>(dialog, "cmdClose"), Qt::LeftButton);
    }
    static void Tab(QDialog& dialog, int index)
    {
        In<QTabWidget>(dialog, "tabPreferences")->setCurrentIndex(index);
    }
    static void Write(QDialog& dialog, const char* box, const char* text)
    {
        auto* line = In<QLineEdit>(dialog, box);
        line->selectAll();
        QTest::keyClick(line, Qt::Key_Delete);
        QTest::keyClicks(line, QLatin1String(text));
    }
    static void Check(QDialog& dialog, const char* box)
    {
        QTest::keyClick(In<QAbstractButton>(dialog, box), Qt::Key_Space);
    }
    static QString TextIn(QDialog& dialog, const QString& box)
    {
        return In<QLineEdit>(dialog, box.toLatin1().constData())->text();
    }
    static bool Checked(QDialog& dialog, const QString& box)
    {
        return In<QAbstractButton>(dialog, box.toLatin1().constData())->isChecked();
    }
    /// Starts with the list in that style.
    void StartWithList(int style)
    {
        Store("Settings", "mnuMainViewTileBoxTileImage.Checked", "False");
        Store("Settings", "lvSelected.View", QByteArray::number(style));
        Start();
    }
    void Store(const char* section, const char* key, const QByteArray& value)
    {
        store.SaveSetting(QLatin1String(section), QLatin1String(key), QString::fromUtf8(value));
    }
    /// Reads the folder again and waits for it.
    void Refresh()
    {
        Click("mnuRefresh");
        EXPECT_TRUE(QTest::qWaitFor([&] { return Rested(); }, kWait));
    }
};

} // namespace quillane
