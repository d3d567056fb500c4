#pragma once
// Acts in a dialog while it runs, as a person would.
#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMenuBar>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

namespace quillane {

/// Runs `ask`, which shows a modal dialog of that name (of any, where the name is empty), and `act`
/// in it; ends the dialog when the acting does not.
inline void InDialog(const char* name, const std::function<void()>& ask,
                     const std::function<void(QDialog&)>& act)
{
    bool came = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || came || (*name && dialog->objectName() != QLatin1String(name))) {
            return;
        }
        came = true;
        const QPointer<QDialog> shown(dialog);
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
        act(*dialog);
        if (shown && shown->isVisible()) {
            shown->reject();
        }
    });
    timer.start(2);
    ask();
    EXPECT_TRUE(came) << name;
}

/// A control by its name.
template <typename Kind> Kind* In(QWidget& window, const char* name)
{
    Kind* found = window.findChild<Kind*>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
}

/// Clears a box and types into it.
inline void Retype(QWidget* box, const char* text)
{
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(box, QLatin1String(text));
}

/// Whether each control that the Tab key reaches has words for screen readers.
inline void ExpectNamedByTab(QDialog& dialog, const QStringList& expected)
{
    QStringList reached;
    for (int i = 0; i < 40; ++i) {
        const QWidget* focus = dialog.focusWidget();
        ASSERT_NE(focus, nullptr);
        if (reached.contains(focus->objectName())) {
            break;
        }
        reached.append(focus->objectName());
        EXPECT_TRUE(!focus->accessibleName().isEmpty()
                    || !focus->property("text").toString().isEmpty())
            << focus->objectName().toStdString();
        QTest::keyClick(&dialog, Qt::Key_Tab);
    }
    for (const QString& name : expected) {
        EXPECT_TRUE(reached.contains(name))
            << name.toStdString() << " of " << reached.join(u' ').toStdString();
    }
}

/// Every letter that Alt reaches in a window, menus of its bar included, leads to one thing.
inline void ExpectOwnMnemonics(QWidget& window)
{
    QStringList letters;
    const auto note = [&](const QString& text) {
        const qsizetype mark = text.indexOf(u'&');
        if (mark >= 0 && mark + 1 < text.size() && text.at(mark + 1) != u'&') {
            letters.append(QString(text.at(mark + 1).toUpper()));
        }
    };
    for (const QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
        note(button->text());
    }
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        note(label->buddy() ? label->text() : QString());
    }
    for (const QMenuBar* bar : window.findChildren<QMenuBar*>()) {
        for (const QAction* menu : bar->actions()) {
            note(menu->text());
        }
    }
    EXPECT_GT(letters.size(), 0);
    letters.sort();
    EXPECT_EQ(std::adjacent_find(letters.begin(), letters.end()), letters.end())
        << letters.join(u' ').toStdString();
}

} // namespace quillane
