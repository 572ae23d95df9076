/// @file
/// Sees from outside the program what a test touches: files and the network.
#pragma once

#include "tests/support/ScratchFolder.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

namespace NuvTest
{

/// A folder of which the system tells whether a file has been opened.
class WatchedFolder
{
  public:
    explicit WatchedFolder(const ScratchFolder& folder)
        : watch(inotify_init1(IN_NONBLOCK))
    {
        if (watch < 0 || inotify_add_watch(watch, folder.Path().c_str(), IN_OPEN) < 0)
            throw std::runtime_error("The scratch folder could not be watched.");
    }
    WatchedFolder(const WatchedFolder&) = delete;
    WatchedFolder& operator=(const WatchedFolder&) = delete;
    ~WatchedFolder() { close(watch); }

    /// Whether anything in the folder has been opened since the last call.
    bool WasTouched()
    {
        alignas(inotify_event) char events[4096];
        bool wasTouched = false;
        while (read(watch, events, sizeof events) > 0)
            wasTouched = true;
        return wasTouched;
    }

  private:
    int watch;
};

/// A server on this machine that closes each connection at once.
class CountingServer
{
  public:
    CountingServer()
        : listener(socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        if (bind(listener, generic, length) != 0 || listen(listener, 8) != 0 ||
            getsockname(listener, generic, &length) != 0)
            throw std::runtime_error("No server could be started.");
        port = ntohs(address.sin_port);
        thread = std::thread([this] { Serve(); });
    }
    CountingServer(const CountingServer&) = delete;
    CountingServer& operator=(const CountingServer&) = delete;
    ~CountingServer()
    {
        Stop();
        close(listener);
    }

    std::string URL() const { return "http://127.0.0.1:" + std::to_string(port) + "/part"; }

    /// How many connections there have been. The server serves no more.
    int CountConnections()
    {
        Stop();
        return connections;
    }

  private:
    void Serve()
    {
        pollfd waiting{listener, POLLIN, 0};
        constexpr int Milliseconds = 20;
        // What has been connected before the end is counted.
        for (bool isLast = false; !isLast;)
        {
            isLast = isStopping;
            while (poll(&waiting, 1, isLast ? 0 : Milliseconds) > 0)
            {
                close(accept(listener, nullptr, nullptr));
                ++connections;
            }
        }
    }

    void Stop()
    {
        isStopping = true;
        if (thread.joinable())
            thread.join();
    }

    int listener;
    int port = 0;
    std::atomic<bool> isStopping = false;
    std::atomic<int> connections = 0;
    std::thread thread;
};

} // namespace NuvTest
