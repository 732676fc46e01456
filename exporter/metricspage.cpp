#include "metricspage.h"

MetricsPage::MetricsPage(std::string text, std::string gzipped, Clock::time_point made)
    : m_text(std::move(text))
    , m_gzipped(std::move(gzipped))
    , m_made(made)
{
}
