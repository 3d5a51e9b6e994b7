#include "phone/demo/report.hpp"

#include "phone/graphics/image_codec.hpp"
#include "phone/graphics/path.hpp"
#include "phone/graphics/text.hpp"

#include <cmath>
#include <fstream>

namespace phone {

namespace {

using graphics::Bitmap;
using graphics::Rect;

// Points of the overview, drawn at kScale.
constexpr double kScale = 1.5;
constexpr double kColumn = 224;
constexpr double kPictureHeight = 430;
constexpr double kCaptionHeight = 40;
constexpr double kGap = 24;
constexpr std::size_t kColumns = 7;

Status writeText(std::string const& text, std::filesystem::path const& path)
{
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    if (!stream)
        return Error { "cannot write " + path.string() };
    return {};
}

std::string escaped(std::string_view text)
{
    std::string result;
    for (char const c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '"')
            result += "&quot;";
        else
            result += c;
    }
    return result;
}

bool isWide(Bitmap const& picture) { return picture.pixelWidth() > picture.pixelHeight(); }

struct Tile {
    SceneResult const* result;
    Bitmap picture;
    Rect cell;
};

// Rows of kColumns; a wide picture takes two columns.
std::vector<Tile> placed(std::vector<SceneResult> const& results)
{
    std::vector<Tile> tiles;
    std::size_t column = 0;
    double y = kGap;
    for (SceneResult const& result : results) {
        if (!result.problem.empty())
            continue;
        Bitmap const& picture = result.image;
        std::size_t const columns = isWide(picture) ? 2 : 1;
        if (column + columns > kColumns) {
            column = 0;
            y += kPictureHeight + kCaptionHeight + kGap;
        }
        double const width = double(columns) * kColumn + double(columns - 1) * kGap;
        tiles.push_back(
            { &result, picture, { kGap + double(column) * (kColumn + kGap), y, width, kPictureHeight } });
        column += columns;
    }
    return tiles;
}

}

Status writeOverview(std::vector<SceneResult> const& results, std::filesystem::path const& folder)
{
    std::vector<Tile> const tiles = placed(results);
    double const width = kGap + double(kColumns) * (kColumn + kGap);
    double const height = (tiles.empty() ? kGap : tiles.back().cell.maxY() + kCaptionHeight) + kGap;
    Bitmap const sheet = Bitmap::withPoints({ width, height }, kScale);
    if (!sheet)
        return Error { "the pictures are too many for one sheet" };
    {
        auto const context = sheet.newContext();
        graphics::addRect(context.get(), sheet.bounds());
        graphics::fill(context.get(), graphics::Color::hex(0xf1f1f4));
        graphics::TextStyle style;
        style.font = graphics::systemFont(14, graphics::FontWeight::kMedium);
        style.alignment = graphics::TextAlignment::center;
        for (Tile const& tile : tiles) {
            auto const size = tile.picture.size();
            double const fit = std::min(tile.cell.width / size.width, tile.cell.height / size.height);
            graphics::Size const shown { size.width * fit, size.height * fit };
            Rect const place { tile.cell.midX() - shown.width / 2, tile.cell.maxY() - shown.height,
                shown.width, shown.height };
            graphics::drawBitmap(context.get(), graphics::resized(tile.picture, shown, kScale), place);
            graphics::drawText(context.get(), tile.result->scene->title, style,
                { tile.cell.x, tile.cell.maxY() + 6, tile.cell.width, 24 }, graphics::Color::hex(0x1c1c1e));
        }
    }
    auto const path = folder / kOverviewName;
    if (!graphics::writePngFile(sheet, path.string()))
        return Error { "cannot write " + path.string() };
    return {};
}

Status writePage(std::vector<SceneResult> const& results, std::filesystem::path const& folder)
{
    std::string page =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n<title>Corvel</title>\n"
        "<style>\n"
        "body { font: 15px/1.45 system-ui, sans-serif; margin: 2em; background: #f1f1f4; color: #1c1c1e }\n"
        "main { display: flex; flex-wrap: wrap; gap: 2em; align-items: flex-end }\n"
        "figure { margin: 0; width: 260px }\n"
        "figure.wide { width: 540px }\n"
        "img { width: 100%; display: block }\n"
        "figcaption { margin-top: .6em; min-height: 7em }\n"
        "</style>\n<h1>Corvel</h1>\n<p>Each picture is a phone of its own. What each of them "
        "recorded is in <a href=\"transcript.txt\">transcript.txt</a>.</p>\n<main>\n";
    for (SceneResult const& result : results) {
        if (!result.problem.empty())
            continue;
        std::string const file = result.picture.filename().string();
        page += std::string("<figure") + (isWide(result.image) ? " class=\"wide\"" : "") + "><a href=\""
            + file + "\"><img src=\"" + file + "\" alt=\"" + escaped(result.scene->caption)
            + "\"></a>\n<figcaption><b>" + escaped(result.scene->title) + "</b><br>"
            + escaped(result.scene->caption) + "</figcaption></figure>\n";
    }
    page += "</main>\n</html>\n";
    return writeText(page, folder / kPageName);
}

Status writeTranscript(std::vector<SceneResult> const& results, std::filesystem::path const& folder)
{
    std::string text;
    for (SceneResult const& result : results) {
        text += result.picture.filename().string() + ": " + result.scene->caption + "\n";
        if (!result.problem.empty())
            text += "  problem: " + result.problem + "\n";
        text += result.transcript + "\n";
    }
    return writeText(text, folder / kTranscriptName);
}

}
