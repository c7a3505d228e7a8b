#pragma once

#include <QDialog>
#include <QString>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui {
class dlgNameInput;
}
QT_END_NAMESPACE

/// Asks for the name of a new task.
class dlgNameInput : public QDialog
{
    Q_OBJECT

public:
    explicit dlgNameInput(QWidget* parent = nullptr);
    ~dlgNameInput() override;

    QString getName() const { return m_strName; }  ///< What was entered; empty until the dialog is accepted.

public Q_SLOTS:
    void on_btnOK_clicked();
    void on_btnCancel_clicked();

private:
    std::unique_ptr<Ui::dlgNameInput> m_pcUi;
    QString m_strName;
};
