#pragma once

#include <QStylePlugin>

// A style that the real korvane-monitor loads when asked to (QT_PLUGIN_PATH
// naming this plugin's folder, QT_STYLE_OVERRIDE=korvaneprobe), so that a test
// can look inside a process started through main() without changing the
// program. It is the Fusion style; once the event loop runs, it prints what
// start-up has set up on standard output, one "key: value" line each, and
// ends the program with exit code 0:
//   decimal: 1234.5 as the default QLocale writes it
//   printf: 2.5 as the C library writes it
//   catalogues: the translation files mapped into the process, by name
//   button: the text of the panel's Connect button
class ProbeStylePlugin final : public QStylePlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QStyleFactoryInterface_iid FILE "probestyle.json")
    Q_DISABLE_COPY_MOVE(ProbeStylePlugin)

public:
    ProbeStylePlugin();
    ~ProbeStylePlugin() override;

    QStyle* create(const QString& key) override;
};
