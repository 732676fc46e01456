#pragma once

#include <memory>

#include <QDialog>

namespace Ui {
class AboutDialog;
}

// Help > About: the icon, product, version with build and pointer width,
// credits and the organisation's copyright and web link. Built anew each time
// it is opened, so it always speaks the current language.
class AboutDialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AboutDialog)

public:
    explicit AboutDialog(QWidget* parent);
    ~AboutDialog() override;

    static QString versionText();
    static QString creditsText();

private:
    std::unique_ptr<Ui::AboutDialog> ui;
};
