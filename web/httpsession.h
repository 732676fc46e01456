#pragma once

#include <atomic>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/string_body.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "apimessage.h"
#include "eventframe.h"
#include "streamhub.h"
#include "webserver.h"

// One connection: requests one after the other (keep-alive), or one event
// stream for as long as the browser keeps it. Everything of a session runs
// on its own strand. Stream is a TCP stream or a TLS stream over one.
template <class Stream>
class HttpSession final : public std::enable_shared_from_this<HttpSession<Stream>>
{
public:
    HttpSession(Stream stream, WebServer::Shared& shared, bool tls);
    HttpSession(const HttpSession&) = delete;
    HttpSession& operator=(const HttpSession&) = delete;
    ~HttpSession();

    void start();

    // A quiet stream gets a comment this often, so that proxies keep it.
    static constexpr std::chrono::seconds HeartbeatInterval {15};
    // The longest wait for a request's head and body.
    static constexpr std::chrono::seconds RequestTimeout {30};
    // The system's send buffer of an event stream (which it doubles).
    static constexpr int StreamSendBuffer = 256 * 1024;

private:
    using Request = boost::beast::http::request<boost::beast::http::string_body>;

    void readRequest();
    void onRequest(boost::beast::error_code error);
    ApiRequest apiRequest() const;
    void respond(ApiResponse response, bool keepAlive);
    void startStream(const ApiRequest& request);
    void onStreamHeader(boost::beast::error_code error);
    void watchForClose();
    void writeEvents();
    void onEventsWritten(boost::beast::error_code error);
    void heartbeat();
    void close();

    Stream m_stream;
    WebServer::Shared& m_shared;
    const bool m_tls;
    boost::beast::flat_buffer m_buffer;
    std::optional<boost::beast::http::request_parser<boost::beast::http::string_body>> m_parser;
    std::shared_ptr<void> m_response;
    // The event stream's.
    std::optional<StreamHub::StreamId> m_streamId;
    boost::beast::http::response<boost::beast::http::empty_body> m_streamHead;
    std::optional<boost::beast::http::response_serializer<boost::beast::http::empty_body>> m_headSerializer;
    std::vector<EventFrame> m_writing;
    std::vector<boost::asio::const_buffer> m_buffers;
    bool m_streaming = false;
    bool m_closed = false;
    bool m_inFlight = false;
    boost::asio::steady_timer m_heartbeat;
    std::chrono::steady_clock::time_point m_lastWrite;
    char m_readByte = 0;
};
