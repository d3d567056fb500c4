#pragma once
// A person in front of the dialogs that open and save a picture: real controls, by their names.
#include "viewer/ui/picture_file_dialogs.h"

#include "core/expect_failure.h"
#include "core/temp_folder.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"
#include "imaging/worker/worker_host.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

namespace quillane {

inline constexpr int kDialogWait = 10'000; // milliseconds; a condition that fails, not a delay

class FileDialogsTest : public testing::Test {
protected:
    FileDialogsTest()
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 2);
    }
    void Copy(const char* sample, const char* name = nullptr)
    {
        folder.Write(name ? name : sample,
                     ReadWholeFile(QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/")
                                       + QLatin1String(sample),
                                   1 << 26));
    }
    /// Runs as soon as the next dialog has its own message loop; a dialog that it leaves open is
    /// cancelled.
    template <typename Act> void WhenShown(const Act& act)
    {
        QMetaObject::invokeMethod(
            qApp,
            [this, act] {
                dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
                ASSERT_NE(dialog, nullptr);
                dialog->activateWindow();
                ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
                act();
                if (dialog && dialog->isVisible()) {
                    static_cast<QDialog*>(dialog)->reject();
                }
            },
            Qt::QueuedConnection);
    }
    template <typename Kind> Kind* Find(const char* name) const
    {
        Kind* found = dialog->findChild<Kind*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QLineEdit* Name() const { return Find<QLineEdit>("fileNameEdit"); }
    QComboBox* Box(const char* name) const { return Find<QComboBox>(name); }
    QCheckBox* Check(const char* name) const { return Find<QCheckBox>(name); }
    void Accept() const
    {
        auto* const buttons = Find<QDialogButtonBox>("buttonBox");
        for (QAbstractButton* const button : buttons->buttons()) {
            if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole) {
                ASSERT_TRUE(button->isEnabled());
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        ADD_FAILURE();
    }
    /// Types a name in the place of what stands there.
    void Type(const char* name) const
    {
        Name()->setFocus();
        Name()->selectAll();
        QTest::keyClicks(Name(), QLatin1String(name));
    }
    void Choose(const char* box, const QString& words) const
    {
        const int at = Box(box)->findText(words);
        ASSERT_GE(at, 0) << words.toStdString();
        Box(box)->setCurrentIndex(at);
    }
    void ChooseType(const char* type) const
    {
        const int at = Box("SaveFormat")->findText(QLatin1String(type), Qt::MatchStartsWith);
        ASSERT_GE(at, 0) << type;
        Box("SaveFormat")->setCurrentIndex(at);
    }
    /// Presses a button of the question that the next step will raise.
    static void AnswerQuestion(const char* button, QString* words = nullptr)
    {
        QMetaObject::invokeMethod(
            qApp,
            [button, words] {
                auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                ASSERT_NE(box, nullptr);
                if (words) {
                    *words = box->text();
                }
                auto* const found = box->findChild<QAbstractButton*>(QLatin1String(button));
                ASSERT_NE(found, nullptr);
                QTest::mouseClick(found, Qt::LeftButton);
            },
            Qt::QueuedConnection);
    }
    QString Words() const { return Find<QLabel>("PreviewWords")->text(); }
    bool HasPreview() const { return !Find<QLabel>("PreviewPicture")->pixmap().isNull(); }
    bool Waits(const std::function<bool()>& condition) const
    {
        return QTest::qWaitFor(condition, kDialogWait);
    }

    QString Open() { return FileOpenDialog(nullptr, QStringLiteral("Open File"), folder.Path()); }
    SaveDialogStart Start(const char* file)
    {
        SaveDialogStart start;
        start.title = QStringLiteral("Save File");
        start.filter = QStringLiteral("All Files|*.*");
        start.folder = folder.Path();
        start.fileName = folder.Path(file);
        ResumeNext([&] {
            const LoadedImage loaded = LoadFile(start.fileName);
            start.format = loaded.facts.format;
            start.bits = loaded.facts.bits;
            start.picture = loaded.bitmap;
        });
        return start;
    }

    TempFolder folder;
    QPointer<QFileDialog> dialog;
};

} // namespace quillane
