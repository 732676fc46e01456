// The receive path: a byte stream cut into pieces as the input says, sent
// through a real loopback TCP connection into ControlClient::receive. What
// comes out must be exactly the lines that jsoncpp reads as JSON, in order;
// once the sender has closed, null and a closed connection.
#include <cstddef>
#include <cstdint>
#include <deque>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <json/reader.h>

#include "clientconsole.h"
#include "controlclient.h"
#include "fuzzinput.h"

namespace {

// A listening socket on 127.0.0.1 for the whole run; the client's console
// lines go nowhere.
struct Loopback
{
    Loopback()
    {
        ClientConsole::discard();
        listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        fuzzRequire(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0
                && ::listen(listener, 16) == 0,
            "listening on loopback");
        socklen_t length = sizeof address;
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
        port = ntohs(address.sin_port);
    }

    int listener = -1;
    int port = 0;
};

bool sendAll(int socket, const std::string& bytes)
{
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = ::send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count < 1)
            return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

// The message a line is, as the client's reader sees it; false for none.
bool parseLine(const std::string& line, Json::Value& message)
{
    Json::Reader reader;
    try {
        return reader.parse(line.data(), line.data() + line.size(), message, true);
    } catch (const Json::Exception&) {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Loopback loopback;
    FuzzInput input(data, size);

    ControlClient client;
    fuzzRequire(client.connect("127.0.0.1", loopback.port), "connecting");
    const int peer = ::accept4(loopback.listener, nullptr, nullptr, SOCK_CLOEXEC);
    fuzzRequire(peer != -1, "accepting");
    const int on = 1;
    ::setsockopt(peer, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);

    std::string pending; // sent, not yet a whole line
    std::deque<Json::Value> expected;
    while (input.remaining() > 0) {
        const std::string piece = input.takeBytes(input.takeNumber(5000) + 1);
        fuzzRequire(sendAll(peer, piece), "sending a piece");
        pending += piece;
        for (std::size_t feed = pending.find('\n'); feed != std::string::npos; feed = pending.find('\n')) {
            Json::Value message;
            if (parseLine(pending.substr(0, feed), message))
                expected.push_back(message);
            pending.erase(0, feed + 1);
        }
        // Only while a whole message is there to take: receive() would wait otherwise.
        while (!expected.empty()) {
            const Json::Value got = client.receive(-1);
            fuzzRequire(got == expected.front(), "the next message is the next line that parses");
            expected.pop_front();
        }
    }
    ::shutdown(peer, SHUT_WR);
    fuzzRequire(client.receive(-1).isNull(), "nothing after the last message");
    fuzzRequire(!client.isConnected(), "the end of the stream closes the connection");
    // A reset, now that the client has closed: no connection is left waiting
    // out its time, and a long run does not use up the local ports.
    const linger reset {1, 0};
    ::setsockopt(peer, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    ::close(peer);
    return 0;
}
