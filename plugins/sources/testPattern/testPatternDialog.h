#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class TestPatternDialog;
}

/// Asks for the size, the rate and the content of test pictures.
class TestPatternDialog : public QDialog
{
public:
    explicit TestPatternDialog(const QString& config);
    ~TestPatternDialog() override;

    QString configText() const;

private:
    std::unique_ptr<Ui::TestPatternDialog> m_pcUi;
};
