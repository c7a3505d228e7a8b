#pragma once

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

#include <functional>

/// Drives dialogs as a user does: through their own widgets, by object name.
namespace DialogDriver {

constexpr int PollMs = 5;

/// The widget of a dialog with this object name; ends the test program when there is none.
template <typename Widget>
Widget* child(QWidget& dialog, const char* name)
{
    auto* widget = dialog.findChild<Widget*>(QString::fromLatin1(name));
    if (!widget)
        qFatal("%s has no %s", dialog.metaObject()->className(), name);
    return widget;
}

inline void click(QWidget& dialog, const char* button)
{
    auto* widget = child<QAbstractButton>(dialog, button);
    QPoint place = widget->rect().center();
    if (qobject_cast<QRadioButton*>(widget))
        place.setX(8);  // Only its circle and its text take clicks.
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, place);
}

inline void clickCell(QTableWidget* table, int row, int column = 0)
{
    QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier,
                      table->visualItemRect(table->item(row, column)).center());
}

inline void doubleClickCell(QTableWidget* table, int row, int column = 0)
{
    clickCell(table, row, column);
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, Qt::NoModifier,
                       table->visualItemRect(table->item(row, column)).center());
}

inline void clickRow(QListWidget* list, int row)
{
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, list->visualItemRect(list->item(row)).center());
}

/// Types over what a field holds.
inline void type(QWidget& dialog, const char* edit, const QString& text)
{
    QWidget* field = child<QWidget>(dialog, edit);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

/// Picks an item with the keyboard.
inline void pick(QWidget& dialog, const char* name, int index)
{
    auto* combo = child<QComboBox>(dialog, name);
    combo->setFocus();
    QTest::keyClick(combo, Qt::Key_Home);
    for (int i = 0; i < index; ++i)
        QTest::keyClick(combo, Qt::Key_Down);
}

inline QStringList itemsOf(QWidget& dialog, const char* combo)
{
    const auto* box = child<QComboBox>(dialog, combo);
    QStringList items;
    for (int i = 0; i < box->count(); ++i)
        items += box->itemText(i);
    return items;
}

inline QStringList rowOf(const QTableWidget* table, int row)
{
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column)
        texts += table->item(row, column)->text();
    return texts;
}

inline QStringList headersOf(const QTableWidget* table)
{
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column)
        texts += table->horizontalHeaderItem(column)->text();
    return texts;
}

inline QStringList tabsOf(QWidget& dialog, const char* name)
{
    const auto* tabs = child<QTabWidget>(dialog, name);
    QStringList texts;
    for (int i = 0; i < tabs->count(); ++i)
        texts += tabs->tabText(i);
    return texts;
}

/// Waits for the modal window of a type that comes up while a call blocks, and acts on it once.
template <typename Window>
class WhenModal : public QObject
{
public:
    explicit WhenModal(std::function<void(Window&)> act) : m_fnAct(std::move(act)) { poll(); }
    bool came() const { return m_bCame; }

private:
    void poll()
    {
        QTimer::singleShot(PollMs, this, [this] {
            auto* window = dynamic_cast<Window*>(QApplication::activeModalWidget());
            if (!window || !window->isVisible())
                return poll();
            m_bCame = true;
            m_fnAct(*window);
        });
    }

    std::function<void(Window&)> m_fnAct;
    bool m_bCame = false;
};

/// Answers the next message box through its own only button and remembers what it said.
class BoxAnswer
{
public:
    QString title() const { return m_strTitle; }
    QString text() const { return m_strText; }                                  ///< Null as long as no box came.
    bool isInformation() const { return m_eIcon == QMessageBox::Information; }  ///< Else an about box.
    bool came() const { return m_cWhen.came(); }

private:
    WhenModal<QMessageBox> m_cWhen{[this](QMessageBox& box) {
        m_strTitle = box.windowTitle();
        m_strText = box.text();
        m_eIcon = box.icon();
        QTest::mouseClick(box.buttons().value(0), Qt::LeftButton);
    }};
    QString m_strTitle;
    QString m_strText;
    QMessageBox::Icon m_eIcon = QMessageBox::NoIcon;
};

/// Acts on a dialog that the call then shows modally; a dialog that is still open afterwards is closed.
template <typename Dialog>
class InDialog
{
public:
    explicit InDialog(std::function<void(Dialog&)> act)
        : m_cWhen([act = std::move(act)](Dialog& dialog) {
              act(dialog);
              if (dialog.isVisible())
                  dialog.reject();
          })
    {
    }
    bool came() const { return m_cWhen.came(); }

private:
    WhenModal<Dialog> m_cWhen;
};

/// The records that a store holds, in all kinds; what a dialog that only lists must leave alone.
template <typename Store>
int recordNum(Store* store)
{
    return store->requestParamDIBMap()->size() + store->requestParamGray8Map()->size() +
           store->requestParamGray16Map()->size() + store->requestParamPointsMap()->size() +
           store->requestParamLinesMap()->size() + store->requestParamPolysMap()->size() +
           store->requestParamAreasMap()->size() + store->requestParamStringsMap()->size();
}

}  // namespace DialogDriver
