#include "server/protocol/Checks.h"

#include <fmt/format.h>
#include <sodium.h>
#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "server/base/Fault.h"
#include "server/protocol/ByteRange.h"
#include "server/protocol/Problem.h"
#include "verdict/Rendering.h"
#include "verdict/text/Uuid.h"

namespace kel::server {

namespace {

constexpr const char *DownloadPause = "10", *QuestionPause = "2";  // seconds until a client may try again

std::string ReadProgram(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad() || bytes.empty())
        throw std::runtime_error(
            fmt::format("setting 'check_program': {} cannot be read, or is empty", path));
    return bytes;
}

/// A text that is the same for the same bytes alone, as the header ETag has it.
std::string MakeTag(const std::string& bytes)
{
    std::array<unsigned char, crypto_generichash_BYTES_MIN> hash{};
    crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char*>(bytes.data()),
                       bytes.size(), nullptr, 0);
    std::string tag = "\"";
    for (const unsigned char byte : hash)
        tag += fmt::format("{:02x}", byte);
    return tag + '"';
}

/// Counts a download while its answer is being sent, and keeps the program for it.
class Download {
public:
    Download(std::shared_ptr<const std::string> program, Count& active)
        : program(std::move(program)), active(active), others(active++)
    {
    }
    ~Download() { --active; }
    Download(const Download&) = delete;
    Download& operator=(const Download&) = delete;

    const std::string* Program() const { return program.get(); }
    /// The number of downloads that were in progress before this one.
    std::size_t Others() const { return others; }

private:
    const std::shared_ptr<const std::string> program;
    Count& active;
    const std::size_t others;
};

Answer NotASession()
{
    return Problem(404, "The session is not a UUID.");
}

Answer UnknownProduct()
{
    return Problem(404, "The product is not known.");
}

Answer TooManyQuestions()
{
    return Problem(429, "Too many pages are asking.", {{"Retry-After", QuestionPause}});
}

/// Lets the page read the answer if its origin is one of the product's.
void AllowOrigin(Answer& answer, const Requirements& requirements, const Request& request)
{
    answer.headers.emplace_back("Vary", "Origin, Accept-Language");
    const std::string* origin = request.Header("Origin");
    const auto& pages = requirements.pages;
    if (origin && std::find(pages.begin(), pages.end(), *origin) != pages.end())
        answer.headers.emplace_back("Access-Control-Allow-Origin", *origin);
}

}  // namespace

Checks::Checks(Service& service, Metrics& metrics, const CheckSettings& settings)
    : service(service), metrics(metrics), maxDownloads(settings.downloads), questions(settings.questions)
{
    if (settings.program.empty())
        return;
    program = std::make_shared<const std::string>(ReadProgram(settings.program));
    tag = MakeTag(*program);
}

/// The program for one more download; null when there are too many.
std::shared_ptr<const std::string> Checks::BeginDownload()
{
    const auto download = std::make_shared<const Download>(program, metrics.activeDownloads);
    return download->Others() < maxDownloads
               ? std::shared_ptr<const std::string>(download, download->Program())
               : nullptr;
}

Answer Checks::Program(const std::string& product, const std::string& session, const Request& request)
{
    if (!program)
        return Problem(404, "This service has no program to download.");
    if (!IsUuid(session))
        return NotASession();
    if (!service.FindRequirements(product))
        return UnknownProduct();
    const std::string* range = request.Header("Range");
    const std::string* condition = request.Header("If-Range");
    const auto asked =
        range && (!condition || *condition == tag) ? ParseRange(*range, program->size()) : std::nullopt;
    const bool isPart = asked.has_value();
    const ByteRange part = asked.value_or(ByteRange{0, program->size()});
    if (part.length == 0)
        return Problem(416, "The program has no such bytes.",
                       {{"Content-Range", fmt::format("bytes */{}", program->size())}});
    Answer answer{200, "application/octet-stream", BeginDownload(), PageHeaders(), true};
    if (!answer.body)
        return Problem(429, "Too many downloads are in progress.", {{"Retry-After", DownloadPause}});
    if (request.method == "GET") {
        metrics.checks.Expect(session);
        metrics.downloads += part.first == 0 ? 1 : 0;
    }
    answer.headers.emplace_back("Content-Disposition",
                                fmt::format("attachment; filename=\"check.{}.{}.exe\"", product, session));
    answer.headers.emplace_back("Accept-Ranges", "bytes");
    answer.headers.emplace_back("ETag", tag);
    if (isPart) {
        answer.status = 206;
        answer.first = part.first;
        answer.length = part.length;
        answer.headers.emplace_back(
            "Content-Range",
            fmt::format("bytes {}-{}/{}", part.first, part.first + part.length - 1, program->size()));
    }
    return answer;
}

Answer Checks::Verdict(const std::string& product, const std::string& session, const Request& request)
{
    if (!IsUuid(session))
        return NotASession();
    if (!questions.Take())
        return TooManyQuestions();
    const auto requirements = service.FindRequirements(product);
    if (!requirements)
        return UnknownProduct();
    metrics.checks.Expect(session);
    const std::string* languages = request.Header("Accept-Language");
    const auto verdict = service.FindVerdict(product, *requirements, session,
                                             ParseLanguages(languages ? *languages : std::string()));
    Answer answer = Problem(404, "There is no verdict yet.");
    if (verdict) {
        metrics.checks.Reach(session, CheckSteps::Shown);
        answer = Answer::Of("application/json", RenderForPage(*verdict, product, session));
        answer.headers = PageHeaders();
    }
    AllowOrigin(answer, *requirements, request);
    return answer;
}

Answer Checks::Preflight(const std::string& product, const Request& request)
{
    if (!questions.Take())
        return TooManyQuestions();
    const auto requirements = service.FindRequirements(product);
    if (!requirements)
        return UnknownProduct();
    Answer answer = Answer::Empty(204);
    answer.headers = {{"Access-Control-Allow-Methods", "GET"}, {"Access-Control-Max-Age", "86400"}};
    AllowOrigin(answer, *requirements, request);
    return answer;
}

}  // namespace kel::server
