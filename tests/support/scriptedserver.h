#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A TCP server on 127.0.0.1 (free port) that plays a script on its own
// thread and records every byte it receives. Build the script, start(), run
// the client against port(), then look at received(). The connection stays
// open after the last step until the server is destroyed (a server that
// never answers), unless a step closes it.
class ScriptedServer final
{
public:
    ScriptedServer();
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::uint16_t port() const { return m_port; }

    ScriptedServer& acceptConnection();
    // Waits until one more whole line (up to a line feed) has come in.
    ScriptedServer& waitForLine();
    // Waits until at least this many bytes have come in on this connection.
    ScriptedServer& waitForBytes(std::size_t count);
    // Writes the bytes in pieces of pieceSize (0: one write for all).
    ScriptedServer& write(const std::string& bytes, std::size_t pieceSize = 0);
    // waitForLine, then the line and its line feed.
    ScriptedServer& reply(const std::string& line);
    // Does nothing for this long: a slow server.
    ScriptedServer& pause(int milliseconds);
    ScriptedServer& closeConnection();
    // Closes with a reset (SO_LINGER 0) instead of an orderly close.
    ScriptedServer& resetConnection();
    // Waits until the peer closes its end.
    ScriptedServer& waitForClose();
    // Until the peer closes: every incoming line gets these bytes as answer.
    ScriptedServer& answerEveryLine(const std::string& bytes, std::size_t pieceSize = 0);
    // Until the peer closes: every incoming line is answered by the entry of
    // replies whose key is its "method" value, or by fallback; each answer
    // gets its line feed.
    ScriptedServer& answerByMethod(
        const std::map<std::string, std::string>& replies, const std::string& fallback);

    void start();
    // Joins the script thread; true when every step ran as planned.
    bool finish();

    std::string received() const;
    // How many steps of the script have been carried out so far.
    std::size_t stepsDone() const { return m_stepsDone; }

private:
    struct Step
    {
        enum Kind
        {
            Accept,
            WaitLine,
            WaitBytes,
            Write,
            Close,
            Reset,
            WaitClose,
            AnswerEveryLine,
            AnswerByMethod,
            Pause,
        };
        Kind kind;
        std::string bytes;
        std::size_t number = 0;
        std::map<std::string, std::string> replies {};
    };

    void run();
    bool runStep(const Step& step);
    bool readMore();
    // Takes the next whole line that has come in; false when there is none yet.
    bool takeLine(std::string* line);
    bool sendAll(const std::string& bytes, std::size_t pieceSize);
    void closeConnectionNow(bool reset);

    int m_listener = -1;
    std::atomic<int> m_connection {-1};
    int m_wakeRead = -1;
    int m_wakeWrite = -1;
    std::uint16_t m_port = 0;
    std::vector<Step> m_steps;
    std::thread m_thread;
    std::atomic<bool> m_stop {false};
    std::atomic<std::size_t> m_stepsDone {0};
    bool m_ok = true;

    mutable std::mutex m_mutex;
    std::string m_received;
    // Per connection: bytes in, and line feeds in and already waited for.
    std::size_t m_connectionBytes = 0;
    std::size_t m_linesIn = 0;
    std::size_t m_linesTaken = 0;
    std::size_t m_nextLineOffset = 0;
};
