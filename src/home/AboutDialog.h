#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class AboutDialog;
}

// The program's name, version, platform and where to read more.
class AboutDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AboutDialog)

public:
    explicit AboutDialog(QWidget* parent = nullptr);
    ~AboutDialog() override;

private:
    std::unique_ptr<Ui::AboutDialog> ui;
};
