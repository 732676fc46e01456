#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/serializer.hpp>
#include <chrono>
#include <memory>
#include <optional>

#include "eventqueue.h"

class BeastHub;

// One HTTP connection: reads the request, then, for the event stream, writes
// each published event as one chunk, one write at a time, from its queue.
class BeastSession final : public std::enable_shared_from_this<BeastSession>
{
public:
    // The socket's executor is the session's strand.
    BeastSession(boost::asio::ip::tcp::socket socket, BeastHub& hub, std::size_t queueLimit);
    BeastSession(const BeastSession&) = delete;
    BeastSession& operator=(const BeastSession&) = delete;

    void start();
    // From any thread: queues the event on the session's strand.
    void post(EventQueue::Event event);

private:
    using Response = boost::beast::http::response<boost::beast::http::empty_body>;

    void onRequest(boost::beast::error_code error);
    void onHeader(boost::beast::error_code error);
    void push(EventQueue::Event event);
    void writeNext();
    void onWritten(boost::beast::error_code error);
    void close(const char* why);

    boost::asio::ip::tcp::socket m_socket;
    BeastHub& m_hub;
    const std::chrono::steady_clock::time_point m_opened;
    boost::beast::flat_buffer m_buffer;
    boost::beast::http::request<boost::beast::http::empty_body> m_request;
    Response m_response;
    std::optional<boost::beast::http::response_serializer<boost::beast::http::empty_body>> m_serializer;
    EventQueue m_queue;
    EventQueue::Event m_writing;
    bool m_streaming = false;
    bool m_closed = false;
};
