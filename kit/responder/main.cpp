// responder.exe FOLDER PORT: answers for the service until it is ended, for trying pages and scripts by hand.
// The user's proxy setting leads the control to it.
#include <cstdio>
#include <cwchar>
#include <exception>

#include "kit/Responder.h"
#include "service/Utf8.h"

int wmain(int count, wchar_t** arguments)
{
    if (count != 3) {
        std::fputs("Usage: responder.exe FOLDER PORT\n", stderr);
        return 2;
    }
    try {
        kel::kit::Responder responder(kel::ToUtf8(arguments[1]),
                                      static_cast<unsigned short>(std::wcstoul(arguments[2], nullptr, 10)));
        std::printf("Answers at http://127.0.0.1:%u/ until Ctrl+C.\n", unsigned{responder.Port()});
        std::fflush(stdout);
        responder.Wait();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "responder: %s\n", error.what());
        return 2;
    }
    return 0;
}
