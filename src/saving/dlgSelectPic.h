#pragma once

#include "forms/recordTable.h"

#include <QDialog>

#include <memory>

class ArithmParamMgr;

QT_BEGIN_NAMESPACE
namespace Ui {
class DlgSelectPic;
}
QT_END_NAMESPACE

/// Lets the user pick one picture record of a store.
class DlgSelectPic : public QDialog
{
    Q_OBJECT

public:
    enum Tab
    {
        ColourTab = 0,
        GreyTab = 1
    };

    /// store: borrowed; without one OK does nothing.
    explicit DlgSelectPic(ArithmParamMgr* store, QWidget* parent = nullptr);
    ~DlgSelectPic() override;

    int getSelectedID() const { return m_nSelectedID; }    ///< -1: none.
    int getSelectedTab() const { return m_nSelectedTab; }  ///< The tab of the selected record.

public Q_SLOTS:
    void on_btnOK_clicked();
    void on_btnCancel_clicked();

private:
    std::unique_ptr<Ui::DlgSelectPic> m_pcUi;
    int m_nSelectedID = RecordTable::NoID;
    int m_nSelectedTab = ColourTab;
    ArithmParamMgr* m_pcStore;  ///< Not owned; may be null.
    RecordTable m_cColour;
    RecordTable m_cGrey;
};
