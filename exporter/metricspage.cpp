#include "metricspage.h"

#include "gzip.h"

MetricsPage::MetricsPage(std::string text, Clock::time_point made)
    : m_text(std::move(text))
    , m_made(made)
{
}

const std::string& MetricsPage::gzipped() const
{
    std::call_once(m_gzipOnce, [this] { m_gzipped = gzipCompress(m_text); });
    return m_gzipped;
}
