#pragma once

#include "../window/windowFixture.h"
#include "dialogDriver.h"

#include <QContextMenuEvent>
#include <QMenu>

#include <functional>

/// What a user does with the tab of a task and with the dialogs that it opens.
namespace StoryDriver {

inline QAction* actionOf(const QMenu* menu, const QString& caption)
{
    for (QAction* action : menu->actions()) {
        if (action->text() == caption)
            return action;
    }
    qFatal("the menu has no %s", qPrintable(caption));
}

/// Right-clicks below the steps and clicks through the menus; what the last entry opens is answered by a driver.
inline void chooseFromMenu(QTableWidget* table, const QStringList& captions)
{
    const QPoint place = table->viewport()->rect().bottomLeft() + QPoint(6, -6);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, table->viewport()->mapToGlobal(place));
    QApplication::sendEvent(table->viewport(), &event);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    for (const QString& caption : captions) {
        QVERIFY(menu);
        QAction* action = actionOf(menu, caption);
        QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
        menu = action->menu();
        if (menu)
            QTRY_VERIFY(menu->isVisible());
    }
    QVERIFY(!QApplication::activePopupWidget());
}

/// The names in the step table, in order.
inline QStringList stepNames(const QTableWidget* table)
{
    QStringList names;
    for (int row = 0; row < table->rowCount(); ++row)
        names += table->item(row, 0)->text();
    return names;
}

/// Types into the cell of a table as a user does: opens its editor, types over, confirms.
inline void editCell(QTableWidget* table, int row, int column, const QString& text)
{
    table->setFocus();
    table->setCurrentCell(row, column);
    QTest::keyClick(table, Qt::Key_F2);
    auto* editor = table->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!table->viewport()->findChild<QLineEdit*>());
    table->clearSelection();
}

/// A planned answer for a dialog whose other dialog is just closing: goes on once a field shows what came of that.
inline std::function<bool(QWidget*)> fillOnceShown(const QString& title, const char* field,
                                                   const std::function<void(QWidget&)>& act)
{
    const QString name = QString::fromLatin1(field);
    return [title, name, act](QWidget* dialog) {
        auto* timer = new QTimer(dialog);
        QObject::connect(timer, &QTimer::timeout, dialog, [dialog, timer, name, act] {
            if (dialog->findChild<QLineEdit*>(name)->text().isEmpty())
                return;
            timer->stop();
            act(*dialog);
            ModalDriver::press(dialog->findChild<QAbstractButton*>(QStringLiteral("btnOK")));
        });
        timer->start(DialogDriver::PollMs);
        return dialog->windowTitle() == title && dialog->findChild<QLineEdit*>(name);
    };
}

/// A planned answer that fills a dialog in and leaves by one of its buttons.
inline std::function<bool(QWidget*)> fill(const QString& title, const std::function<void(QWidget&)>& act,
                                          const char* button = "btnOK")
{
    const QString name = QString::fromLatin1(button);
    return [title, act, name](QWidget* dialog) {
        auto* pressed = dialog->findChild<QAbstractButton*>(name);
        if (dialog->windowTitle() != title || !pressed)
            return false;
        act(*dialog);
        ModalDriver::press(pressed);
        return true;
    };
}

}  // namespace StoryDriver
