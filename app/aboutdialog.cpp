#include "aboutdialog.h"

#include <QPixmap>

#include "ui_aboutdialog.h"
#include "version.h"

namespace {

// The 32 pixel icon drawn with the screen's own pixels: of the renderings of
// the drawn master (32, 48 and 64 pixels) the smallest that covers them,
// scaled down smoothly if need be. A scaled-up 32 pixel picture is blurred.
QPixmap iconFor(qreal ratio)
{
    const int pixels = qRound(32 * qMax<qreal>(ratio, 1.0));
    const QString name = pixels <= 32 ? QStringLiteral(":/images/app_icon32.png")
        : pixels <= 48                ? QStringLiteral(":/images/app_icon48.png")
                                      : QStringLiteral(":/images/app_icon32@2x.png");
    QPixmap pixmap(name);
    if (pixmap.isNull() || pixels <= 32)
        return pixmap;
    if (pixmap.width() != pixels)
        pixmap = pixmap.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    pixmap.setDevicePixelRatio(qreal(pixels) / 32);
    return pixmap;
}

} // namespace

AboutDialog::AboutDialog(QWidget* parent)
    : QDialog(parent, Qt::WindowCloseButtonHint)
    , ui(std::make_unique<Ui::AboutDialog>())
{
    ui->setupUi(this);

    ui->labelProduct->setText(
        QCoreApplication::organizationName() + QLatin1Char(' ') + QCoreApplication::applicationName());
    ui->labelVersion->setText(versionText());
    ui->editCredits->setPlainText(creditsText());
    ui->labelIcon->setPixmap(iconFor(devicePixelRatioF()));
}

AboutDialog::~AboutDialog() = default;

QString AboutDialog::versionText()
{
    return QStringLiteral("Version %1.%2.%3 build %4 (%5 bit)")
        .arg(Version::Major)
        .arg(Version::Minor)
        .arg(Version::Release)
        .arg(Version::Build)
        .arg(int(sizeof(void*) * 8));
}

QString AboutDialog::creditsText()
{
    return QStringLiteral(
        "Portions of this software are based in part on the work of the Independent JPEG Group.\n"
        "Some of the icons used come from the Tango Desktop Project (http://tango.freedesktop.org/) "
        "and the Silk icon set (http://www.famfamfam.com/lab/icons/silk/).\n"
        "Warning: This computer program is protected by copyright law and international treaties. "
        "Unauthorized reproduction or distribution of this program, or any portion of it, may result in "
        "severe civil and criminal penalties, and will be prosecuted to the maximum extent possible under "
        "the law.");
}
