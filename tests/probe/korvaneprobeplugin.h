#pragma once

#include <QGenericPlugin>

// A probe that the tests load into the real korvane-monitor, built or
// installed, as a Qt generic plugin (QT_PLUGIN_PATH naming the folder above
// this plugin's "generic", QT_QPA_GENERIC_PLUGINS=korvaneprobe), so that they
// can look inside a process started through main() without changing the
// program. What it does is chosen by KORVANE_PROBE:
//   startup  once the event loop runs, that is at the end of start-up, one
//            "key: value" line each, then exit code 0:
//              decimal: 1234.5 as the default QLocale writes it
//              printf: 2.5 as the C library writes it
//              catalogues: the translation files mapped into the process
//              button: the text of the panel's Connect button
//   (other)  once the main window is on the screen, what a user reads there:
//              directory: where the program runs from
//              window: its title
//              menu: each menu's title
//              qt: a text of Qt's own catalogues
//            then, with KORVANE_PROBE=quit, the program ends; with
//            KORVANE_PROBE=crash, it crashes with a real invalid write.
class KorvaneProbePlugin final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "korvaneprobe.json")
    Q_DISABLE_COPY_MOVE(KorvaneProbePlugin)

public:
    KorvaneProbePlugin();
    ~KorvaneProbePlugin() override;

    QObject* create(const QString& key, const QString& parameters) override;
};
