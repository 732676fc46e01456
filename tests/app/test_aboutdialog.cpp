#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include "aboutdialog.h"
#include "application.h"

namespace {

template <typename T>
T* child(const QDialog& dialog, const char* name)
{
    return dialog.findChild<T*>(QLatin1String(name));
}

} // namespace

TEST(AboutDialog, OpensAt364By244)
{
    AboutDialog dialog(nullptr);
    EXPECT_EQ(dialog.size(), QSize(364, 244));
    EXPECT_EQ(dialog.objectName(), QStringLiteral("AboutDialog"));
}

TEST(AboutDialog, HasOnlyTheCloseButtonHint)
{
    AboutDialog dialog(nullptr);
    EXPECT_TRUE(dialog.windowFlags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_FALSE(dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
}

TEST(AboutDialog, ShowsProductVersionAndDescription)
{
    AboutDialog dialog(nullptr);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("About Monitor"));
    EXPECT_EQ(child<QLabel>(dialog, "labelProduct")->text(), QStringLiteral("Korvane Monitor"));
    EXPECT_EQ(
        child<QLabel>(dialog, "labelVersion")->text(), QStringLiteral("Version 0.1.0 build 2834 (64 bit)"));
    EXPECT_EQ(child<QLabel>(dialog, "label_3")->text(), QStringLiteral("Network processing monitor"));
}

TEST(AboutDialog, CreditsAreThreeReadOnlyLines)
{
    AboutDialog dialog(nullptr);
    auto* credits = child<QPlainTextEdit>(dialog, "editCredits");
    ASSERT_NE(credits, nullptr);
    EXPECT_TRUE(credits->isReadOnly());
    const QStringList lines = credits->toPlainText().split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0],
        QStringLiteral(
            "Portions of this software are based in part on the work of the Independent JPEG Group."));
    EXPECT_TRUE(lines[1].contains(QStringLiteral("http://tango.freedesktop.org/")));
    EXPECT_TRUE(lines[1].contains(QStringLiteral("http://www.famfamfam.com/lab/icons/silk/")));
    EXPECT_EQ(lines[2],
        QStringLiteral(
            "Warning: This computer program is protected by copyright law and international treaties. "
            "Unauthorized reproduction or distribution of this program, or any portion of it, may "
            "result in severe civil and criminal penalties, and will be prosecuted to the maximum "
            "extent possible under the law."));
}

TEST(AboutDialog, CopyrightAndWebLinkOpenInTheBrowser)
{
    AboutDialog dialog(nullptr);
    EXPECT_EQ(child<QLabel>(dialog, "label_5")->text(),
        QStringLiteral("Copyright © 2026 Korvane. All rights reserved."));
    auto* link = child<QLabel>(dialog, "label_6");
    EXPECT_EQ(
        link->text(), QStringLiteral("<a href=\"https://www.korvane.com\">https://www.korvane.com</a>"));
    EXPECT_EQ(link->textFormat(), Qt::AutoText);
    EXPECT_TRUE(link->openExternalLinks());
}

TEST(AboutDialog, FormHasTheNamedWidgetsInPlace)
{
    AboutDialog dialog(nullptr);
    for (const char* name :
        {"verticalLayout", "horizontalLayout", "verticalLayout_2", "horizontalLayout_2", "verticalLayout_3"})
        EXPECT_NE(dialog.findChild<QLayout*>(QLatin1String(name)), nullptr) << name;
    auto* row = dialog.findChild<QHBoxLayout*>(QStringLiteral("horizontalLayout"));
    EXPECT_EQ(row->stretch(0), 0);
    EXPECT_EQ(row->stretch(1), 1);
    EXPECT_EQ(child<QLabel>(dialog, "labelIcon")->margin(), 10);
    auto* buttons = child<QDialogButtonBox>(dialog, "buttonBox");
    EXPECT_EQ(buttons->standardButtons(), QDialogButtonBox::Ok);
}

TEST(AboutDialog, IconIsTheThirtyTwoPixelApplicationIcon)
{
    AboutDialog dialog(nullptr);
    auto* icon = child<QLabel>(dialog, "labelIcon");
    EXPECT_EQ(icon->pixmap().size(), QSize(32, 32));
    EXPECT_TRUE(icon->text().isEmpty());
}

// Also run at QT_SCALE_FACTOR 1.5 and 2: the icon has the screen's own pixels.
TEST(AboutDialog, IconHasThePixelsOfTheScreen)
{
    AboutDialog dialog(nullptr);
    const qreal ratio = dialog.devicePixelRatioF();
    const QPixmap pixmap = child<QLabel>(dialog, "labelIcon")->pixmap();
    EXPECT_EQ(pixmap.size(), QSize(qRound(32 * ratio), qRound(32 * ratio))) << ratio;
    EXPECT_EQ(pixmap.devicePixelRatio(), ratio);
    EXPECT_EQ(pixmap.deviceIndependentSize(), QSizeF(32, 32));
}

TEST(AboutDialog, MissingIconResourceLeavesTheIconEmpty)
{
    Q_CLEANUP_RESOURCE(app_images);
    ASSERT_TRUE(QPixmap(QStringLiteral(":/images/app_icon32.png")).isNull());
    AboutDialog dialog(nullptr);
    auto* icon = child<QLabel>(dialog, "labelIcon");
    EXPECT_TRUE(icon->pixmap().isNull());
    EXPECT_TRUE(icon->text().isEmpty());
    Q_INIT_RESOURCE(app_images);
    EXPECT_FALSE(QPixmap(QStringLiteral(":/images/app_icon32.png")).isNull());
}

TEST(AboutDialog, OkAndEscapeCloseTheDialog)
{
    AboutDialog dialog(nullptr);
    dialog.show();
    child<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Ok)->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(dialog.isVisible());

    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_FALSE(dialog.isVisible());
}

TEST(AboutDialog, IsNotRetranslatedWhileOpenButBuiltAnewInTheCurrentLanguage)
{
    AboutDialog open(nullptr);
    open.show();
    Application::loadTranslation(QStringLiteral("de"));
    QCoreApplication::processEvents();
    EXPECT_EQ(open.windowTitle(), QStringLiteral("About Monitor"));
    EXPECT_EQ(child<QLabel>(open, "label_3")->text(), QStringLiteral("Network processing monitor"));

    AboutDialog fresh(nullptr);
    EXPECT_EQ(fresh.windowTitle(), QStringLiteral("Über Monitor"));
    EXPECT_EQ(child<QLabel>(fresh, "label_3")->text(), QStringLiteral("Monitor für Netzwerkverarbeitung"));

    Application::loadTranslation(QStringLiteral("en"));
    QCoreApplication::processEvents();
}
