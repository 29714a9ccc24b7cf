#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class UpgradeDialog;
}

// Which version is installed and, when the build names a web address, where
// newer ones are found.
class UpgradeDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UpgradeDialog)

public:
    explicit UpgradeDialog(QWidget* parent = nullptr);
    ~UpgradeDialog() override;

private:
    std::unique_ptr<Ui::UpgradeDialog> ui;
};
