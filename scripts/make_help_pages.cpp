// zorvel_help_pages SOURCES PAGES VERSION: makes the help pages. Inserts each page of the folder
// SOURCES into frame.html and writes it to the folder PAGES under the same name. Placeholders are
// in double braces: "metric KEY" is the explanation of a metric, "version" is VERSION, and in the
// frame "title" and "content" are the heading of the page and the page itself.
//
// The pages are XHTML that browsers also read as HTML. Runs during the build.
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "model/metric_explanations.h"

namespace zorvel {
namespace {

namespace fs = std::filesystem;

struct Page {
    std::string file;  // "metrics.html"
    std::string content;
    std::string version;
    std::string frame;
};

std::string textOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error(path.string() + " cannot be read");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void write(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << text << std::flush)) {
        throw std::runtime_error(path.string() + " cannot be written");
    }
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '&') {
            result += "&amp;";
        } else if (c == '<') {
            result += "&lt;";
        } else if (c == '>') {
            result += "&gt;";
        } else {
            result += c;
        }
    }
    return result;
}

std::string entry(const char* term, const char* text) {
    if (*text == '\0') return {};
    return std::string("<dt>") + term + "</dt>\n<dd>" + escaped(text) + "</dd>\n";
}

MetricExplanation explanationOf(const std::string& key) {
    for (const MetricGroup group : {MetricGroup::census, MetricGroup::pooled, MetricGroup::averages,
                                    MetricGroup::incidence}) {
        for (const ShownMetric& shown : metricsOf(group))
            if (metricKey(shown) == key) return zorvel::explanationOf(shown);
    }
    throw std::runtime_error("there is no metric " + key);
}

std::string metricSection(const std::string& key) {
    const MetricExplanation words = explanationOf(key);
    return "<h2 id=\"" + key + "\">" + escaped(words.name) + "</h2>\n<p>" + escaped(words.meaning) +
           "</p>\n<dl>\n" + entry("Formula", words.formula) + entry("Variant", words.variant) +
           entry("Source", words.source) + "</dl>";
}

std::string between(std::string_view text, std::string_view before, std::string_view after) {
    const std::size_t found = text.find(before);
    if (found == std::string_view::npos) return {};
    const std::size_t begin = found + before.size();
    return std::string(text.substr(begin, text.find(after, begin) - begin));
}

std::string expanded(std::string_view text, const Page& page);

std::string replacement(const std::string& word, const Page& page) {
    if (word == "version") return page.version;
    if (word == "title") return between(page.content, "<h1>", "</h1>");
    if (word == "content") return expanded(page.content, page);
    if (word.starts_with("metric ")) return metricSection(word.substr(7));
    throw std::runtime_error("unknown placeholder {{" + word + "}}");
}

std::string expanded(std::string_view text, const Page& page) {
    std::string result;
    while (true) {
        const std::size_t open = text.find("{{");
        if (open == std::string_view::npos) return result.append(text);
        const std::size_t close = text.find("}}", open);
        if (close == std::string_view::npos) throw std::runtime_error("}} is missing");
        result.append(text.substr(0, open));
        result += replacement(std::string(text.substr(open + 2, close - open - 2)), page);
        text.remove_prefix(close + 2);
    }
}

// Marks the navigation link to the page itself.
std::string withCurrentLink(std::string text, const std::string& file) {
    const std::string link = "<a href=\"" + file + "\">";
    const std::size_t found = text.find(link);
    if (found != std::string::npos) text.insert(found + 2, " aria-current=\"page\"");
    return text;
}

void makePages(const fs::path& sources, const fs::path& pages, const std::string& version) {
    const std::string frame = textOf(sources / "frame.html");
    fs::create_directories(pages);
    for (const auto& entry : fs::directory_iterator(sources)) {
        const std::string file = entry.path().filename().string();
        if (entry.path().extension() != ".html" || file == "frame.html") continue;
        try {
            const Page page{file, textOf(entry.path()), version, withCurrentLink(frame, file)};
            write(pages / file, expanded(page.frame, page));
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(file + ": " + error.what());
        }
    }
}

}  // namespace
}  // namespace zorvel

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() != 4) {
        std::cerr << "Usage: zorvel_help_pages SOURCES PAGES VERSION\n";
        return 2;
    }
    try {
        zorvel::makePages(arguments[1], arguments[2], arguments[3]);
    } catch (const std::exception& error) {
        std::cerr << "zorvel_help_pages: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
