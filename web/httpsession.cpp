#include "httpsession.h"

#include <boost/asio/post.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/chunk_encode.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>

#include "problem.h"
#include "webapi.h"

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// application/x-www-form-urlencoded decoding of one query name or value.
std::string decoded(std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '+') {
            out += ' ';
        } else if (text[i] == '%' && i + 2 < text.size() && hexDigit(text[i + 1]) >= 0
            && hexDigit(text[i + 2]) >= 0) {
            out += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::map<std::string, std::string> parseQuery(std::string_view query)
{
    std::map<std::string, std::string> values;
    while (!query.empty()) {
        const std::size_t amp = query.find('&');
        const std::string_view pair = query.substr(0, amp);
        const std::size_t equals = pair.find('=');
        if (!pair.empty())
            values.emplace(decoded(pair.substr(0, equals)),
                equals == std::string_view::npos ? std::string() : decoded(pair.substr(equals + 1)));
        query = amp == std::string_view::npos ? std::string_view() : query.substr(amp + 1);
    }
    return values;
}

std::string lowerCase(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

beast::tcp_stream& lowest(beast::tcp_stream& stream)
{
    return stream;
}

beast::tcp_stream& lowest(beast::ssl_stream<beast::tcp_stream>& stream)
{
    return stream.next_layer();
}

} // namespace

template <class Stream>
HttpSession<Stream>::HttpSession(Stream stream, WebServer::Shared& shared, bool tls)
    : m_stream(std::move(stream))
    , m_shared(shared)
    , m_tls(tls)
    , m_heartbeat(lowest(m_stream).get_executor())
{
}

template <class Stream>
HttpSession<Stream>::~HttpSession()
{
    if (m_streamId)
        m_shared.hub.close(*m_streamId);
    if (m_inFlight)
        --m_shared.inFlight;
}

template <class Stream>
void HttpSession<Stream>::start()
{
    readRequest();
}

template <class Stream>
void HttpSession<Stream>::readRequest()
{
    m_parser.emplace();
    // One byte more than the API takes, so that a larger body is told apart.
    m_parser->body_limit(WebApi::MaxBodyBytes + 1);
    lowest(m_stream).expires_after(RequestTimeout);
    http::async_read(m_stream, m_buffer, *m_parser,
        [self = this->shared_from_this()](beast::error_code error, std::size_t) { self->onRequest(error); });
}

template <class Stream>
void HttpSession<Stream>::onRequest(beast::error_code error)
{
    if (error == http::error::body_limit) {
        return respond(problemResponse(Problem::BodyTooLarge,
                           "more than " + std::to_string(WebApi::MaxBodyBytes) + " bytes"),
            false);
    }
    if (error)
        return close();
    lowest(m_stream).expires_never();
    const ApiRequest request = apiRequest();
    if (m_shared.api.isEventStream(request))
        return startStream(request);
    if (++m_shared.inFlight > m_shared.maxRequests) {
        --m_shared.inFlight;
        return respond(problemResponse(Problem::TooManyRequests,
                           "more than " + std::to_string(m_shared.maxRequests) + " requests at once"),
            false);
    }
    m_inFlight = true;
    const bool keepAlive = m_parser->get().keep_alive();
    m_shared.api.handle(request, [self = this->shared_from_this(), keepAlive](ApiResponse response) {
        asio::post(lowest(self->m_stream).get_executor(),
            [self, keepAlive, response = std::move(response)]() mutable {
                self->m_inFlight = false;
                --self->m_shared.inFlight;
                self->respond(std::move(response), keepAlive);
            });
    });
}

template <class Stream>
ApiRequest HttpSession<Stream>::apiRequest() const
{
    const auto& message = m_parser->get();
    ApiRequest request;
    request.method = std::string(message.method_string());
    const std::string_view target(message.target().data(), message.target().size());
    const std::size_t question = target.find('?');
    request.path = std::string(target.substr(0, question));
    if (question != std::string_view::npos)
        request.query = parseQuery(target.substr(question + 1));
    for (const auto& field : message)
        request.headers[lowerCase(std::string_view(field.name_string().data(), field.name_string().size()))]
            = std::string(field.value());
    request.body = message.body();
    beast::error_code ignored;
    const auto peer = lowest(const_cast<Stream&>(m_stream)).socket().remote_endpoint(ignored);
    asio::ip::address address = peer.address();
    if (address.is_v6() && address.to_v6().is_v4_mapped())
        address = address.to_v6().to_v4();
    request.remote = address.to_string();
    request.remoteIsLoopback = address.is_loopback();
    request.tls = m_tls;
    return request;
}

template <class Stream>
void HttpSession<Stream>::respond(ApiResponse answer, bool keepAlive)
{
    WebApi::addSecurityHeaders(answer, m_tls);
    auto response
        = std::make_shared<http::response<http::string_body>>(static_cast<http::status>(answer.status), 11);
    response->set(http::field::content_type, answer.contentType);
    for (const auto& [name, value] : answer.headers)
        response->set(name, value);
    for (const auto& [name, value] : m_shared.headers)
        response->set(name, value);
    const bool head = m_parser && m_parser->get().method() == http::verb::head;
    response->body() = head ? std::string() : std::move(answer.body);
    response->keep_alive(keepAlive);
    response->prepare_payload();
    m_response = response;
    lowest(m_stream).expires_after(RequestTimeout);
    http::async_write(m_stream, *response,
        [self = this->shared_from_this(), keepAlive](beast::error_code error, std::size_t) {
            self->m_response.reset();
            if (error || !keepAlive)
                return self->close();
            self->readRequest();
        });
}

template <class Stream>
void HttpSession<Stream>::startStream(const ApiRequest& request)
{
    std::variant<WebApi::Stream, ApiResponse> start = m_shared.api.startStream(request);
    if (ApiResponse* refusal = std::get_if<ApiResponse>(&start))
        return respond(std::move(*refusal), false);
    const WebApi::Stream& stream = std::get<WebApi::Stream>(start);
    std::weak_ptr<HttpSession> weak = this->shared_from_this();
    auto executor = lowest(m_stream).get_executor();
    m_streamId = m_shared.hub.open(stream.lastEventId, stream.followedBatch, [weak, executor] {
        asio::post(executor, [weak] {
            if (auto self = weak.lock())
                self->writeEvents();
        });
    });
    if (!m_streamId)
        return respond(
            problemResponse(Problem::TooManyStreams, "every event stream this server allows is open"), false);
    // The system would let a stream's send buffer grow to megabytes; what a
    // slow browser has not taken waits in the stream's own bounded queue instead.
    beast::error_code ignored;
    lowest(m_stream).socket().set_option(asio::socket_base::send_buffer_size(StreamSendBuffer), ignored);

    ApiResponse head;
    WebApi::addSecurityHeaders(head, m_tls);
    m_streamHead = http::response<http::empty_body>(http::status::ok, 11);
    m_streamHead.set(http::field::content_type, "text/event-stream");
    for (const auto& [name, value] : head.headers)
        m_streamHead.set(name, value);
    for (const auto& [name, value] : m_shared.headers)
        m_streamHead.set(name, value);
    // Proxies that buffer would hold the events back.
    m_streamHead.set("X-Accel-Buffering", "no");
    m_streamHead.chunked(true);
    m_headSerializer.emplace(m_streamHead);
    http::async_write_header(
        m_stream, *m_headSerializer, [self = this->shared_from_this()](beast::error_code error, std::size_t) {
            self->onStreamHeader(error);
        });
}

template <class Stream>
void HttpSession<Stream>::onStreamHeader(beast::error_code error)
{
    if (error)
        return close();
    m_streaming = true;
    m_lastWrite = std::chrono::steady_clock::now();
    watchForClose();
    heartbeat();
    writeEvents();
}

template <class Stream>
void HttpSession<Stream>::watchForClose()
{
    // A browser sends nothing on an event stream: any read that ends means it left.
    asio::async_read(m_stream, asio::buffer(&m_readByte, 1),
        [self = this->shared_from_this()](beast::error_code, std::size_t) { self->close(); });
}

template <class Stream>
void HttpSession<Stream>::writeEvents()
{
    if (!m_streaming || m_closed || !m_writing.empty())
        return;
    if (!m_shared.hub.take(*m_streamId, m_writing))
        return close();
    if (m_writing.empty())
        return;
    m_buffers.clear();
    for (const EventFrame& frame : m_writing)
        m_buffers.emplace_back(frame->data(), frame->size());
    asio::async_write(m_stream, http::make_chunk(m_buffers),
        [self = this->shared_from_this()](
            beast::error_code error, std::size_t) { self->onEventsWritten(error); });
}

template <class Stream>
void HttpSession<Stream>::onEventsWritten(beast::error_code error)
{
    m_writing.clear();
    if (error)
        return close();
    m_lastWrite = std::chrono::steady_clock::now();
    writeEvents();
}

template <class Stream>
void HttpSession<Stream>::heartbeat()
{
    m_heartbeat.expires_after(HeartbeatInterval);
    m_heartbeat.async_wait([self = this->shared_from_this()](beast::error_code error) {
        if (error || self->m_closed)
            return;
        if (self->m_writing.empty()
            && std::chrono::steady_clock::now() - self->m_lastWrite
                >= HeartbeatInterval - std::chrono::seconds(1)) {
            self->m_writing.push_back(heartbeatFrame());
            self->m_buffers.assign({asio::const_buffer(heartbeatFrame()->data(), heartbeatFrame()->size())});
            asio::async_write(self->m_stream, http::make_chunk(self->m_buffers),
                [self](beast::error_code error, std::size_t) { self->onEventsWritten(error); });
        }
        self->heartbeat();
    });
}

template <class Stream>
void HttpSession<Stream>::close()
{
    if (m_closed)
        return;
    m_closed = true;
    m_heartbeat.cancel();
    if (m_streamId) {
        m_shared.hub.close(*m_streamId);
        m_streamId.reset();
    }
    beast::error_code ignored;
    lowest(m_stream).socket().shutdown(asio::ip::tcp::socket::shutdown_both, ignored);
    lowest(m_stream).close();
}

template class HttpSession<beast::tcp_stream>;
template class HttpSession<beast::ssl_stream<beast::tcp_stream>>;
