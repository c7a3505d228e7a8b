#pragma once

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QList>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStringList>
#include <QTest>
#include <QTimer>

#include <functional>

/**
 * Answers the modal dialogs that the next commands open, in the order in which the answers were planned, each through
 * the dialog's own buttons. A dialog that was not planned is rejected and counts as unexpected.
 */
class ModalDriver : public QObject
{
public:
    /// A message box as it was seen.
    struct Box
    {
        QString m_strTitle;
        QString m_strText;
        QMessageBox::StandardButtons m_nButtons;
        QMessageBox::StandardButton m_nDefault;

        /// Whether it asks a text as every question of the window is asked.
        bool asks(const QString& text) const
        {
            return m_strTitle == QStringLiteral("警告") && m_strText == text &&
                   m_nButtons == (QMessageBox::Yes | QMessageBox::No) && m_nDefault == QMessageBox::No;
        }
    };
    /// A file dialog as it was seen.
    struct File
    {
        QString m_strTitle;
        QString m_strFolder;
        QString m_strName;  ///< In the field for the name.
        QStringList m_lstFilters;
        QFileDialog::AcceptMode m_nMode;
        QFileDialog::FileMode m_nFileMode;
        bool m_bQtsOwn;  ///< Rather than that of the desktop.
    };

    ModalDriver()
    {
        QObject::connect(&m_cTimer, &QTimer::timeout, this, [this] { look(); });
        m_cTimer.start(5);
    }

    /// Presses a button of the next message box.
    ModalDriver& box(QMessageBox::StandardButton answer)
    {
        m_lstPlan.append([this, answer](QWidget* widget) {
            auto* const messageBox = qobject_cast<QMessageBox*>(widget);
            if (messageBox == nullptr)
                return false;
            note(messageBox);
            press(messageBox->button(answer));
            return true;
        });
        return *this;
    }

    /// Types a name into the next file dialog and accepts it; cancels it when the name is empty.
    ModalDriver& file(const QString& name)
    {
        m_lstPlan.append([this, name](QWidget* widget) {
            auto* const dialog = qobject_cast<QFileDialog*>(widget);
            if (dialog == nullptr)
                return false;
            m_lstFiles.append({dialog->windowTitle(), dialog->directory().absolutePath(), nameIn(*dialog),
                               dialog->nameFilters(), dialog->acceptMode(), dialog->fileMode(),
                               dialog->testOption(QFileDialog::DontUseNativeDialog)});
            dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
            const auto button =
                dialog->acceptMode() == QFileDialog::AcceptSave ? QDialogButtonBox::Save : QDialogButtonBox::Open;
            auto* const buttons = dialog->findChild<QDialogButtonBox*>();
            press(buttons->button(name.isEmpty() ? QDialogButtonBox::Cancel : button));
            return true;
        });
        return *this;
    }

    /// Does something of the test's own with the next dialog.
    ModalDriver& dialog(const std::function<bool(QWidget*)>& action)
    {
        m_lstPlan.append(action);
        return *this;
    }

    /// Enters a task's name and presses a button ("btnOK" or "btnCancel").
    ModalDriver& name(const QString& text, const char* button = "btnOK")
    {
        const QString buttonName = QString::fromLatin1(button);
        return dialog([text, buttonName](QWidget* widget) {
            auto* const edit = widget->findChild<QLineEdit*>();
            auto* const pressed = widget->findChild<QPushButton*>(buttonName);
            if (edit == nullptr || pressed == nullptr)
                return false;
            edit->insert(text);  // Key events of the test library know ASCII only.
            press(pressed);
            return true;
        });
    }

    /// Clicks once the caller is back in the event loop: the click may open a dialog of its own.
    static void press(QAbstractButton* button, int delayMs = 0)
    {
        QTimer::singleShot(delayMs, button, [button] { QTest::mouseClick(button, Qt::LeftButton); });
    }

    /// Whether every planned dialog came and no other.
    bool done() const { return m_lstPlan.isEmpty() && m_lstUnexpected.isEmpty(); }

    QList<Box> m_lstBoxes;
    QList<File> m_lstFiles;
    QStringList m_lstUnexpected;  ///< Titles.
    int m_nMostBoxes = 0;         ///< Message boxes that were open at one time.

private:
    void note(const QMessageBox* box)
    {
        auto* const defaultButton = box->defaultButton();
        m_lstBoxes.append({box->windowTitle(), box->text(), box->standardButtons(),
                           defaultButton != nullptr ? box->standardButton(defaultButton) : QMessageBox::NoButton});
    }

    static QString nameIn(const QFileDialog& dialog)
    {
        const auto* const field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        return field ? field->text() : QStringLiteral("(no field)");
    }

    void look()
    {
        int boxes = 0;
        for (const QWidget* const widget : QApplication::topLevelWidgets())
            boxes += qobject_cast<const QMessageBox*>(widget) != nullptr && widget->isVisible() ? 1 : 0;
        m_nMostBoxes = qMax(m_nMostBoxes, boxes);

        QWidget* const widget = QApplication::activeModalWidget();
        if (widget == nullptr || !widget->isVisible())
            return;
        if (widget == m_pcAnswered) {
            giveUpOn(widget);
            return;
        }
        m_pcAnswered = widget;
        m_cAnswered.start();
        // The same dialog may be shown again.
        QObject::connect(static_cast<QDialog*>(widget), &QDialog::finished, this, [this] { m_pcAnswered = nullptr; });
        const std::function<bool(QWidget*)> action =
            m_lstPlan.isEmpty() ? [](QWidget*) { return false; } : m_lstPlan.takeFirst();
        if (action(widget))
            return;
        m_lstUnexpected.append(widget->windowTitle());
        static_cast<QDialog*>(widget)->reject();
    }

    /// An answer that did not close its dialog must not hang the test.
    void giveUpOn(QWidget* widget)
    {
        if (m_cAnswered.elapsed() < 20000)
            return;
        m_lstUnexpected.append(QStringLiteral("still open: ") + widget->windowTitle());
        static_cast<QDialog*>(widget)->reject();
    }

    QTimer m_cTimer;
    QElapsedTimer m_cAnswered;
    QList<std::function<bool(QWidget*)>> m_lstPlan;
    QPointer<QWidget> m_pcAnswered;  ///< Answered already, perhaps not closed yet.
};
