#include "beastsession.h"

#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/chunk_encode.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <cstdio>

#include "beasthub.h"

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

BeastSession::BeastSession(asio::ip::tcp::socket socket, BeastHub& hub, std::size_t queueLimit)
    : m_socket(std::move(socket))
    , m_hub(hub)
    , m_opened(std::chrono::steady_clock::now())
    , m_queue(queueLimit)
{
}

void BeastSession::start()
{
    http::async_read(m_socket, m_buffer, m_request,
        [self = shared_from_this()](beast::error_code error, std::size_t) { self->onRequest(error); });
}

void BeastSession::post(EventQueue::Event event)
{
    asio::post(m_socket.get_executor(),
        [self = shared_from_this(), event = std::move(event)]() mutable { self->push(std::move(event)); });
}

void BeastSession::onRequest(beast::error_code error)
{
    if (error)
        return close("request");
    const bool events = m_request.method() == http::verb::get && m_request.target() == "/api/v1/events";
    m_response = Response(events ? http::status::ok : http::status::not_found, m_request.version());
    m_response.set(http::field::server, "sse-bench");
    if (events) {
        m_response.set(http::field::content_type, "text/event-stream");
        m_response.set(http::field::cache_control, "no-cache");
        m_response.chunked(true);
        m_hub.add(shared_from_this());
    } else {
        m_response.content_length(0);
        m_response.keep_alive(false);
    }
    m_serializer.emplace(m_response);
    http::async_write_header(m_socket, *m_serializer,
        [self = shared_from_this()](beast::error_code error, std::size_t) { self->onHeader(error); });
}

void BeastSession::onHeader(beast::error_code error)
{
    if (error || m_response.result() != http::status::ok)
        return close(error ? "header" : "not found");
    m_streaming = true;
    writeNext();
}

void BeastSession::push(EventQueue::Event event)
{
    if (m_closed)
        return;
    if (m_queue.push(std::move(event)))
        std::fprintf(stderr, "beast: a stream dropped its queue (%zu so far)\n", m_queue.drops());
    writeNext();
}

void BeastSession::writeNext()
{
    if (!m_streaming || m_writing || m_closed)
        return;
    m_writing = m_queue.pop();
    if (!m_writing)
        return;
    asio::async_write(m_socket, http::make_chunk(asio::const_buffer(m_writing->data(), m_writing->size())),
        [self = shared_from_this()](beast::error_code error, std::size_t) { self->onWritten(error); });
}

void BeastSession::onWritten(beast::error_code error)
{
    m_writing.reset();
    if (error)
        return close("write");
    writeNext();
}

void BeastSession::close(const char* why)
{
    if (m_closed)
        return;
    m_closed = true;
    beast::error_code ignored;
    m_socket.shutdown(asio::ip::tcp::socket::shutdown_both, ignored);
    m_socket.close(ignored);
    m_queue.clear();
    if (m_streaming) {
        const std::chrono::duration<double> open = std::chrono::steady_clock::now() - m_opened;
        std::fprintf(stderr, "beast: stream closed after %.1f s (%s), %zu queue drops\n", open.count(), why,
            m_queue.drops());
    }
    m_hub.remove(shared_from_this());
}
