#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class PictureFolderDialog;
}

/// Asks for a folder of pictures and how to play it.
class PictureFolderDialog : public QDialog
{
public:
    explicit PictureFolderDialog(const QString& config);
    ~PictureFolderDialog() override;

    QString configText() const;

private:
    void browse();

    std::unique_ptr<Ui::PictureFolderDialog> m_pcUi;
};
