#include <windows.h>

#include <condition_variable>
#include <mutex>
#include <queue>
#include <thread>

#include "detectors/Components.h"
#include "program/Commands.h"
#include "program/host/Caller.h"
#include "program/host/Conversation.h"
#include "program/host/Frames.h"
#include "program/machine/Progress.h"
#include "program/machine/ServiceCheck.h"
#include "program/text/UserError.h"

namespace kel::program {

namespace {

constexpr std::size_t MaxWaiting = 4;  // messages; the extension waits for each answer

/// Ends the process at once: nothing is sent once the browser has closed the input, also when a check is
/// under way.
[[noreturn]] void EndProcess(int code)
{
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    std::abort();  // not reached
}

std::size_t ReadInput(char* bytes, std::size_t count)
{
    DWORD got = 0;
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    return ::ReadFile(input, bytes, static_cast<DWORD>(count), &got, nullptr) ? got : 0;
}

/// Writes a whole frame. One that cannot be written ends the process, since nobody reads.
void Send(const std::string& content)
{
    static std::mutex turn;
    const std::lock_guard lock(turn);
    const std::string frame = MakeFrame(content);
    for (std::size_t start = 0; start < frame.size();) {
        DWORD count = 0;
        if (!::WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), frame.data() + start,
                         static_cast<DWORD>(frame.size() - start), &count, nullptr))
            EndProcess(WrongUse);
        start += count;
    }
}

/// The messages that wait for the thread that answers them.
class Inbox {
public:
    /// Reads messages until the input ends or cannot be read, and then ends the process.
    void Fill()
    {
        try {
            while (auto message = ReadFrame(&ReadInput)) {
                const std::lock_guard lock(mutex);
                messages.push(std::move(*message));
                if (messages.size() > MaxWaiting)
                    EndProcess(WrongUse);
                isFilled.notify_one();
            }
            EndProcess(0);
        } catch (...) {
            EndProcess(WrongUse);
        }
    }

    std::string Take()
    {
        std::unique_lock lock(mutex);
        isFilled.wait(lock, [this] { return !messages.empty(); });
        std::string message = std::move(messages.front());
        messages.pop();
        return message;
    }

private:
    std::mutex mutex;
    std::condition_variable isFilled;
    std::queue<std::string> messages;
};

VerdictAnswer FetchVerdictWithProgress()
{
    Components::SetListener([](const char* detector) {
        Send(Conversation::Progress(detector != nullptr ? AreaOfDetector(detector) : ""));
    });
    return FetchVerdict();
}

}  // namespace

int ServeBrowser(const Options& options)
{
    if (!IsAllowedCaller(options.callers))
        throw UserError(
            "The caller is not an extension that this program answers. Only a browser starts \"kel host\", "
            "for the extension that is listed in its manifest.");
    static Inbox inbox;  // longer than the thread
    std::thread([] { inbox.Fill(); }).detach();
    Conversation conversation(
        {&BeginCheck, &FetchWantedGroups, &ListReportedValues, &FetchVerdictWithProgress});
    while (true)
        Send(conversation.Answer(inbox.Take()));
}

}  // namespace kel::program
