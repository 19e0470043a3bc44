#include "tests/monitor/ServerBench.h"

#include <filesystem>
#include <fstream>

namespace {

using namespace Monitor;
namespace Files = std::filesystem;

constexpr const char* token = "0123456789abcdef0123456789abcdef";

/// A page, and beside it what is nobody's business.
class PageOnDisk {
public:
    PageOnDisk()
    {
        std::string pattern = (Files::temp_directory_path() / "pageXXXXXX").string();
        _folder = mkdtemp(pattern.data());
        for (const char* const name : {"web/js/plot", "web/parts"})
            Files::create_directories(_folder / name);
        for (const char* const name :
             {"web/index.html", "web/style.css", "web/js/app.js", "web/js/plot/plot.js", "web/parts/viz.js"})
            std::ofstream(_folder / name) << "content";
        for (const char* const name : {"secret.js", "web/package.json", "web/js/secret.txt", "web/parts/secret.js"})
            std::ofstream(_folder / name) << "confidential";
    }
    ~PageOnDisk() { Files::remove_all(_folder); }

    /// The first has none.
    std::vector<std::string> folders() const { return {_folder.string(), (_folder / "web").string()}; }

private:
    Files::path _folder;
};

struct Asked {
    const char* _name;
    Door _door;
    const char* _request;
    const char* _status;
    const char* _type;
    const char* _body;
};

/// The head, and what follows it before the answer to the next question; the connection is to stand.
std::pair<std::string, std::string> ask(BenchClient& client, const std::string& request, const std::string& more = {})
{
    client.send(request + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" + more + "\r\nGET /next?token=" + token +
                " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    const std::string head = client.takeUpTo("\r\n\r\n"), rest = client.takeUpTo("HTTP/1.1 404");
    EXPECT_FALSE(rest.empty()) << head;
    EXPECT_FALSE(client.takeUpTo("}\n").empty());
    return {head, rest.substr(0, rest.rfind("HTTP/1.1"))};
}

class Page : public ::testing::TestWithParam<Asked> {
protected:
    const PageOnDisk _page;
    ServerBench _bench{token, true, _page.folders()};
};

TEST_P(Page, ServesItsFilesAndNothingElse)
{
    const Asked& row = GetParam();
    BenchClient client(_bench, row._door);
    const auto [head, body] = ask(client, row._request);
    EXPECT_TRUE(head.starts_with("HTTP/1.1 " + std::string(row._status))) << head;
    EXPECT_NE(head.find("Content-Type: " + std::string(row._type)), head.npos) << head;
    EXPECT_NE(head.find("nosniff"), head.npos);
    EXPECT_EQ(head.find("Content-Security-Policy: default-src 'none'; script-src 'self' ") != head.npos,
              head.find("Content-Length: 7\r\n") != head.npos)
        << head;
    EXPECT_TRUE(*row._body ? body.find(row._body) != body.npos : body.empty()) << body;
    EXPECT_EQ(body.find("confidential"), body.npos);
}

INSTANTIATE_TEST_SUITE_P(
    Requests, Page,
    ::testing::Values(
        Asked{"Start", Door::Loopback, "GET /", "200", "text/html; charset=utf-8", "content"},
        Asked{"StartWithToken", Door::Network, "GET /?token=0123456789abcdef0123456789abcdef", "200", "text/html",
              "content"},
        Asked{"Style", Door::Unix, "GET /style.css", "200", "text/css", "content"},
        Asked{"Script", Door::Loopback, "GET /js/app.js", "200", "text/javascript", "content"},
        Asked{"Part", Door::Loopback, "GET /parts/viz.js", "200", "text/javascript", "content"},
        Asked{"ScriptInAFolder", Door::Loopback, "GET /js/plot/plot.js", "200", "text/javascript", "content"},
        Asked{"ScriptNeedsNoToken", Door::Network, "GET /js/app.js", "200", "text/javascript", "content"},
        Asked{"Head", Door::Loopback, "HEAD /js/app.js", "200", "text/javascript", ""},
        Asked{"HeadOfAQuestion", Door::Loopback, "HEAD /slots", "405", "application/json", ""},
        Asked{"PartThatIsNotInstalled", Door::Loopback, "GET /parts/three.js", "404", "text/plain", "ostrelPage"},
        Asked{"PartThatIsNone", Door::Loopback, "GET /parts/secret.js", "404", "text/plain", "'/parts/secret.js'"},
        Asked{"Unknown", Door::Loopback, "GET /js/other.js", "404", "text/plain", "'/js/other.js'"},
        Asked{"NoScript", Door::Loopback, "GET /js/secret.txt", "404", "text/plain", "no file"},
        Asked{"Above", Door::Loopback, "GET /js/../../secret.js", "404", "text/plain", "no file"},
        Asked{"AboveEncoded", Door::Loopback, "GET /js/%2e%2e%2f%2e%2e%2fsecret.js", "404", "text/plain", "no file"},
        Asked{"List", Door::Loopback, "GET /package.json", "404", "application/json", "nothing is answered"},
        Asked{"Put", Door::Unix, "PUT /js/app.js", "405", "application/json", "takes GET and HEAD"},
        Asked{"Delete", Door::Unix, "DELETE /", "405", "application/json", "takes GET and HEAD"}),
    [](const auto& row) { return std::string(row.param._name); });

TEST(PageOfAnotherMachine, StartNeedsTheToken)
{
    const PageOnDisk page;
    ServerBench bench(token, true, page.folders());
    BenchClient client(bench, Door::Network);
    client.send("GET / HTTP/1.1\r\nHost: studio\r\n\r\n");
    EXPECT_NE(client.readAll().find("HTTP/1.1 403"), std::string::npos);
}

TEST(PageOfABrowser, IsNotSentAgainWhereItHasIt)
{
    const PageOnDisk page;
    ServerBench bench(token, true, page.folders());
    BenchClient client(bench);
    const std::string head = ask(client, "GET /js/app.js").first;
    const auto at = head.find("ETag: ") + 6;
    const std::string tag = head.substr(at, head.find('\r', at) - at);
    for (const std::string& known : {tag, "\"x\", W/" + tag, std::string("*")}) {
        const auto [again, body] = ask(client, "GET /js/app.js", "If-None-Match: " + known + "\r\n");
        EXPECT_TRUE(again.starts_with("HTTP/1.1 304")) << known;
        EXPECT_EQ(again.find("Content-Length"), again.npos);
        EXPECT_EQ(body, "");
    }
    EXPECT_EQ(ask(client, "GET /js/app.js", "If-None-Match: \"x\"\r\n").second, "content");
}

TEST(PageThatIsMissing, LeavesTheRest)
{
    ServerBench bench({}, false, {"/nowhere/web"});
    BenchClient client(bench);
    client.send("GET / HTTP/1.1\r\nHost: h\r\n\r\nGET /host HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_TRUE(client.waitFor("no index.html in '/nowhere/web'"));
    EXPECT_TRUE(client.waitFor("pid"));
}
} // namespace
