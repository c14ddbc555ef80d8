// SPDX-License-Identifier: Apache-2.0
// Drawing with lines and areas.
#include "perf-measure/plot/svg_chart.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string_view>

#include "perf-measure/plot/scale.h"

namespace perf_measure {

namespace {

// Pixels.
constexpr double WIDTH = 960;
constexpr double CHART_HEIGHT = 320;  // of one chart with its title and legend
constexpr double PLOT_LEFT = 80;
constexpr double PLOT_RIGHT = WIDTH - 30;
constexpr double PLOT_TOP = 50;  // below the chart's upper end
constexpr double PLOT_BOTTOM = 240;
constexpr double TIME_BASELINE = PLOT_BOTTOM + 20;
constexpr double LEGEND_BASELINE = PLOT_BOTTOM + 50;
constexpr double LOST_SIZE = 4;         // half the width of a cross
constexpr std::size_t MOST_DOTS = 400;  // samples that are drawn as dots with their values

constexpr char STYLE[] =
    "<style>text{font:13px sans-serif;fill:#222}.title{font-weight:bold;font-size:15px}.end{text-anchor:end}"
    ".middle{text-anchor:middle}.grid{stroke:#ddd}.axis{stroke:#444}.range{fill:#9ec5e8;fill-opacity:.55;stroke:none}"
    ".edge{fill:none;stroke:#6a9fd0}.average{fill:none;stroke:#0b4f8a;stroke-width:2}.dot{fill:#0b4f8a}"
    ".lost{stroke:#c22;stroke-width:2;fill:none}.lost-text{fill:#c22}</style>\n";

[[gnu::format(printf, 2, 3)]] void append(std::string *out, const char *format, ...) {
    char text[1024];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    out->append(text, static_cast<std::size_t>(std::min(length, static_cast<int>(sizeof text) - 1)));
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char letter : text) {
        switch (letter) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        default: result += letter;
        }
    }
    return result;
}

// One chart: what it draws, and where on the page.
class chart {
public:
    chart(const series &drawn, double top, std::string *out)
        : drawn_(drawn),
          whole_(summarize(drawn)),
          ticks_(ticks_between(whole_.lowest, whole_.highest, MOST_TICKS)),
          top_(top),
          out_(out) {}

    void draw(const std::string &what) {
        *out_ += "<g>\n";
        append(out_, "<text class=\"title\" x=\"%g\" y=\"%g\">", PLOT_LEFT, top_ + 28);
        *out_ += escaped(drawn_.title) + "</text>\n";
        append(out_, "<text x=\"%g\" y=\"%g\">delay in µs, ", PLOT_LEFT + 300, top_ + LEGEND_BASELINE);
        *out_ += escaped(what) + "</text>\n";
        if (drawn_.samples.empty()) {
            append(out_, "<text x=\"%g\" y=\"%g\">no samples</text>\n", PLOT_LEFT, top_ + PLOT_TOP + 20);
        } else {
            draw_axes();
            draw_range();
            draw_line("average", &sample::average);
            draw_dots();
            draw_losses();
            draw_legend();
        }
        *out_ += "</g>\n";
    }

private:
    [[nodiscard]] double x_of(const sample &each) const {
        return PLOT_LEFT + position(each.time_msec, whole_.first_msec, whole_.last_msec, PLOT_RIGHT - PLOT_LEFT);
    }
    [[nodiscard]] double y_of(std::uint64_t value) const {
        return top_ + PLOT_BOTTOM - position(value, ticks_.front(), ticks_.back(), PLOT_BOTTOM - PLOT_TOP);
    }

    void draw_axes() {
        for (const std::uint64_t tick : ticks_) {
            append(out_, "<line class=\"grid\" x1=\"%g\" y1=\"%.1f\" x2=\"%g\" y2=\"%.1f\"/>\n", PLOT_LEFT, y_of(tick),
                   PLOT_RIGHT, y_of(tick));
            append(out_, "<text class=\"end\" x=\"%g\" y=\"%.1f\">%llu</text>\n", PLOT_LEFT - 8, y_of(tick) + 4,
                   static_cast<unsigned long long>(tick));
        }
        append(out_, "<path class=\"axis\" fill=\"none\" d=\"M%g %g V%g H%g\"/>\n", PLOT_LEFT, top_ + PLOT_TOP,
               top_ + PLOT_BOTTOM, PLOT_RIGHT);
        const bool is_moment = whole_.last_msec == whole_.first_msec;
        append(out_, "<text class=\"%s\" x=\"%g\" y=\"%g\">%s</text>\n", is_moment ? "middle" : "start",
               is_moment ? (PLOT_LEFT + PLOT_RIGHT) / 2 : PLOT_LEFT, top_ + TIME_BASELINE,
               time_text(whole_.first_msec).c_str());
        if (!is_moment) {
            append(out_, "<text class=\"end\" x=\"%g\" y=\"%g\">%s</text>\n", PLOT_RIGHT, top_ + TIME_BASELINE,
                   time_text(whole_.last_msec).c_str());
        }
    }

    void append_points(std::uint32_t sample::*value, bool backwards) {
        for (std::size_t i = 0; i < drawn_.samples.size(); ++i) {
            const sample &each = drawn_.samples[backwards ? drawn_.samples.size() - 1 - i : i];
            if (each.has_delay) {
                append(out_, "%.1f,%.1f ", x_of(each), y_of(each.*value));
            }
        }
    }

    void draw_line(const char *style, std::uint32_t sample::*value) {
        append(out_, "<polyline class=\"%s\" points=\"", style);
        append_points(value, false);
        *out_ += "\"/>\n";
    }

    // The area between minimum and maximum, and its edges.
    void draw_range() {
        *out_ += "<polygon class=\"range\" points=\"";
        append_points(&sample::maximum, false);
        append_points(&sample::minimum, true);
        *out_ += "\"/>\n";
        draw_line("edge", &sample::minimum);
        draw_line("edge", &sample::maximum);
    }

    // With the values as the text that a browser shows beside the pointer.
    void draw_dots() {
        for (const sample &each : drawn_.samples) {
            if (!each.has_delay || drawn_.samples.size() > MOST_DOTS) {
                continue;
            }
            append(out_, "<line class=\"edge\" x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\"/>\n", x_of(each),
                   y_of(each.minimum), x_of(each), y_of(each.maximum));
            append(out_, "<circle class=\"dot\" cx=\"%.1f\" cy=\"%.1f\" r=\"3\"><title>", x_of(each),
                   y_of(each.average));
            append(out_, "%s: average %u, minimum %u, maximum %u", time_text(each.time_msec).c_str(), each.average,
                   each.minimum, each.maximum);
            if (each.sent > 0) {
                append(out_, ", %u of %u packets", each.received, each.sent);
            }
            *out_ += "</title></circle>\n";
        }
    }

    void draw_losses() {
        for (const sample &each : drawn_.samples) {
            if (each.lost() == 0) {
                continue;
            }
            const double x = x_of(each);
            const double y = top_ + PLOT_TOP - 8;
            append(out_, "<path class=\"lost\" d=\"M%.1f %.1f L%.1f %.1f M%.1f %.1f L%.1f %.1f\">", x - LOST_SIZE,
                   y - LOST_SIZE, x + LOST_SIZE, y + LOST_SIZE, x - LOST_SIZE, y + LOST_SIZE, x + LOST_SIZE,
                   y - LOST_SIZE);
            append(out_, "<title>%s: %u of %u packets lost</title></path>\n", time_text(each.time_msec).c_str(),
                   each.lost(), each.sent);
        }
    }

    void draw_legend() {
        const double y = top_ + LEGEND_BASELINE;
        append(out_, "<line class=\"average\" x1=\"%g\" y1=\"%g\" x2=\"%g\" y2=\"%g\"/>", PLOT_LEFT, y - 4,
               PLOT_LEFT + 24, y - 4);
        append(out_, "<text x=\"%g\" y=\"%g\">average</text>\n", PLOT_LEFT + 30, y);
        append(out_, "<rect class=\"range\" x=\"%g\" y=\"%g\" width=\"24\" height=\"12\"/>", PLOT_LEFT + 100, y - 10);
        append(out_, "<text x=\"%g\" y=\"%g\">minimum to maximum</text>\n", PLOT_LEFT + 130, y);
        append(out_, "<text class=\"end\" x=\"%g\" y=\"%g\">%zu samples", PLOT_RIGHT, y, drawn_.samples.size());
        if (whole_.sent > 0) {
            append(out_, ", <tspan%s>%llu of %llu packets lost</tspan>", whole_.lost > 0 ? " class=\"lost-text\"" : "",
                   static_cast<unsigned long long>(whole_.lost), static_cast<unsigned long long>(whole_.sent));
        }
        *out_ += "</text>\n";
    }

    const series &drawn_;
    summary whole_;
    std::vector<std::uint64_t> ticks_;
    double top_;
    std::string *out_;
};

}  // namespace

std::string svg_document(const std::vector<series> &drawn, const std::string &what) {
    const double height = CHART_HEIGHT * static_cast<double>(std::max<std::size_t>(drawn.size(), 1));
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    append(&text, "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%g\" height=\"%g\" viewBox=\"0 0 %g %g\">\n",
           WIDTH, height, WIDTH, height);
    text += STYLE;
    append(&text, "<rect width=\"%g\" height=\"%g\" fill=\"#fff\"/>\n", WIDTH, height);
    double top = 0;
    for (const series &each : drawn) {
        chart(each, top, &text).draw(what);
        top += CHART_HEIGHT;
    }
    return text + "</svg>\n";
}

}  // namespace perf_measure
