#pragma once

#include "records.h"

#include <QDialog>

#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;

namespace Ui {
class StepDialog;
}

/**
 * The dialog of a step: a table of the store's pictures to pick the input from, rows of parameters, names of the
 * outputs. What a step's own dialog adds are its rows and the option that it makes of them.
 */
class StepDialog : public QDialog
{
public:
    StepDialog(const QString& title, ArithmParamMgr& store);
    ~StepDialog() override;

    /// Accepts only with an input chosen; says so otherwise.
    void accept() override;

protected:
    ArithmParamMgr& store() { return m_cStore; }

    /// Fills the table with the store's pictures of these kinds and selects one; the first when none was chosen yet.
    void listInputs(const std::vector<PictureKind>& kinds, const PictureRef& chosen);
    PictureRef input() const;  ///< The chosen picture; id 0 for none.

    /// @name Rows of the parameter box; the widgets belong to the dialog.
    /// @{
    QSpinBox* addNumber(const char* objectName, const QString& label, int lowest, int highest, int value);
    QComboBox* addChoice(const char* objectName, const QString& label, const QStringList& items, int index);
    QCheckBox* addFlag(const char* objectName, const QString& label, bool value);
    /// @}

    /// A row of the output box that names an output record.
    QLineEdit* addOutput(const char* objectName, const QString& label, const OutputRef& output);

private:
    void placeField(QWidget* field);  ///< In the order of the Tab key: behind the field before it.
    void addInputRow(const PictureRef& picture, const ArithmParam& record, const PictureRef& chosen);

    ArithmParamMgr& m_cStore;
    std::unique_ptr<Ui::StepDialog> m_pcUi;
    QWidget* m_pcLastField;               ///< Before the buttons; not owned.
    std::vector<PictureRef> m_vecInputs;  ///< By row of the table.
};
