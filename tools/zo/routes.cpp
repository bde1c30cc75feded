#include "routes.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <queue>
#include <utility>

namespace ZoTool {

namespace {

constexpr double BEND = 60;  // what a bend costs, in units of length
constexpr double CROWD = 25; // and each net that is there already
constexpr double ASIDE =
    1.5; // by which a line leaves its port, so that it does not meet one from the box opposite

/// The pieces of channels beside the cells: the upright ones beside each row, the level ones beside each
/// column.
class Channels {
public:
    Channels(int rows, int columns) : rows(rows), columns(columns) {}

    int Upright(int channel, int row) const { return row * (columns + 1) + channel; }
    int Level(int channel, int column) const { return rows * (columns + 1) + channel * columns + column; }
    int Count() const { return rows * (columns + 1) + (rows + 1) * columns; }

    bool IsUpright(int piece) const { return piece < rows * (columns + 1); }
    /// The channel of a piece, and its place there: a row, or a column.
    int ChannelOf(int piece) const {
        if (IsUpright(piece)) return piece % (columns + 1);
        return (piece - rows * (columns + 1)) / columns;
    }
    int PlaceOf(int piece) const {
        if (IsUpright(piece)) return piece / (columns + 1);
        return (piece - rows * (columns + 1)) % columns;
    }

    template <class Action>
    void ForEachNeighbour(int piece, Action action) const {
        const int channel = ChannelOf(piece), place = PlaceOf(piece);
        const bool upright = IsUpright(piece);
        const int places = upright ? rows : columns;   // along this channel
        const int crossing = upright ? columns : rows; // places along those that cross it
        const auto same = [&](int at) { return upright ? Upright(channel, at) : Level(channel, at); };
        const auto other = [&](int itsChannel, int at) {
            return upright ? Level(itsChannel, at) : Upright(itsChannel, at);
        };
        if (place > 0) action(same(place - 1));
        if (place + 1 < places) action(same(place + 1));
        for (const int crossed : {place, place + 1}) {
            if (channel > 0) action(other(crossed, channel - 1));
            if (channel < crossing) action(other(crossed, channel));
        }
    }

private:
    int rows, columns;
};

/// A straight run of a net in one channel.
struct Run {
    std::size_t net;
    bool upright;
    int channel;
    int low = std::numeric_limits<int>::max(), high = std::numeric_limits<int>::min();
    int lean = 0; ///< how much more it is met from below, or from the right
    int track = 0;
    double at = 0; ///< x of an upright run, y of a level one
    double from = std::numeric_limits<double>::max(), to = std::numeric_limits<double>::lowest();

    // Twice the channel's number, or twice the place's and one more.
    void Cover(int place) {
        low = std::min(low, place);
        high = std::max(high, place);
    }
    void Reach(double where) {
        from = std::min(from, where);
        to = std::max(to, where);
    }
};

struct Tap {
    Port port;
    int piece; ///< of a channel
    Side side;
};

/// The way of a net: links between neighbouring pieces of channels, and the taps where ports join it.
struct Way {
    std::map<int, bool> pieces; ///< all that it passes
    std::vector<std::pair<int, int>> links;
    std::vector<Tap> targets, sources;
};

class Router {
public:
    Router(const GridSizes& sizes, const std::vector<Net>& nets)
        : sizes(sizes), nets(nets), rows(static_cast<int>(sizes.rowHeights.size())),
          columns(rows == 0 ? 0 : static_cast<int>(sizes.boxHeights[0].size())), channels(rows, columns),
          crowd(static_cast<std::size_t>(channels.Count())) {}

    Routes Lead() {
        ways.resize(nets.size());
        for (std::size_t i = 0; i < nets.size(); ++i) Find(nets[i], ways[i]);
        for (std::size_t i = 0; i < nets.size(); ++i) MakeRuns(i);
        AssignTracks();
        PlaceChannels();
        for (Route& route : result.routes) route = {};
        result.routes.resize(nets.size());
        for (std::size_t i = 0; i < nets.size(); ++i) Draw(i);
        for (const Run& run : runs) {
            if (run.from > run.to) continue;
            std::vector<Piece>& pieces = result.routes[run.net].pieces;
            if (run.upright) {
                pieces.push_back({run.at, run.from, run.at, run.to});
            } else {
                pieces.push_back({run.from, run.at, run.to, run.at});
            }
        }
        return std::move(result);
    }

private:
    std::vector<Tap> TapsOf(const Port& port) const {
        if (port.vertical) {
            const int channel = port.side == Side::Top ? port.row : port.row + 1;
            return {{port, channels.Level(channel, port.column), port.side}};
        }
        return {{port, channels.Upright(port.column, port.row), Side::Left},
                {port, channels.Upright(port.column + 1, port.row), Side::Right}};
    }

    double Length(int piece) const {
        if (!channels.IsUpright(piece)) return sizes.boxWidth + sizes.minColumnGap;
        return sizes.rowHeights[static_cast<std::size_t>(channels.PlaceOf(piece))] + sizes.minRowGap;
    }

    /// The shortest way of each source to what there is of the net.
    void Find(const Net& net, Way& way) {
        const std::vector<Tap> ends = TapsOf(net.target);
        std::vector<std::size_t> order(net.sources.size());
        for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
        const auto distance = [&](std::size_t i) {
            return std::abs(net.sources[i].row - net.target.row) +
                   std::abs(net.sources[i].column - net.target.column);
        };
        std::stable_sort(order.begin(), order.end(),
                         [&](std::size_t a, std::size_t b) { return distance(a) < distance(b); });
        way.sources.resize(net.sources.size());
        for (const std::size_t i : order) way.sources[i] = Join(TapsOf(net.sources[i]), ends, way);
        for (const auto& [piece, unused] : way.pieces) ++crowd[static_cast<std::size_t>(piece)];
    }

    Tap Join(const std::vector<Tap>& starts, const std::vector<Tap>& ends, Way& way) {
        struct Step {
            double cost;
            int piece;
            bool operator>(const Step& other) const {
                return cost != other.cost ? cost > other.cost : piece > other.piece;
            }
        };
        std::vector<double> best(crowd.size(), std::numeric_limits<double>::max());
        std::vector<int> before(crowd.size(), -1);
        std::priority_queue<Step, std::vector<Step>, std::greater<>> open;
        for (const Tap& start : starts) {
            const double cost = CROWD * crowd[static_cast<std::size_t>(start.piece)];
            if (cost >= best[static_cast<std::size_t>(start.piece)]) continue;
            best[static_cast<std::size_t>(start.piece)] = cost;
            open.push({cost, start.piece});
        }
        const auto endAt = [&](int piece) {
            return std::find_if(ends.begin(), ends.end(), [&](const Tap& end) { return end.piece == piece; });
        };
        while (!open.empty()) {
            const Step step = open.top();
            open.pop();
            const auto here = static_cast<std::size_t>(step.piece);
            if (step.cost > best[here]) continue;
            const bool joins = way.pieces.count(step.piece) != 0;
            if (joins || endAt(step.piece) != ends.end()) {
                if (!joins) way.targets.push_back(*endAt(step.piece));
                int piece = step.piece;
                for (; before[static_cast<std::size_t>(piece)] >= 0;
                     piece = before[static_cast<std::size_t>(piece)]) {
                    way.pieces[piece] = true;
                    way.links.emplace_back(piece, before[static_cast<std::size_t>(piece)]);
                }
                way.pieces[piece] = true;
                return *std::find_if(starts.begin(), starts.end(),
                                     [&](const Tap& tap) { return tap.piece == piece; });
            }
            channels.ForEachNeighbour(step.piece, [&](int next) {
                const auto there = static_cast<std::size_t>(next);
                const bool bends = channels.IsUpright(next) != channels.IsUpright(step.piece);
                const double further = way.pieces.count(next) != 0 ? 0 : Length(next) + CROWD * crowd[there];
                const double cost = step.cost + further + (bends ? BEND : 0);
                if (cost >= best[there]) return;
                best[there] = cost;
                before[there] = step.piece;
                open.push({cost, next});
            });
        }
        return starts.front(); // every channel reaches every other
    }

    /// Joins linked pieces of one channel to runs.
    void MakeRuns(std::size_t net) {
        const Way& way = ways[net];
        std::map<int, int> above; // a piece of the same run
        for (const auto& [piece, unused] : way.pieces) above[piece] = piece;
        const auto top = [&](int piece) {
            while (above[piece] != piece) piece = above[piece];
            return piece;
        };
        for (const auto& [a, b] : way.links) {
            if (channels.IsUpright(a) == channels.IsUpright(b)) above[top(a)] = top(b);
        }
        std::map<int, std::size_t> runOfTop;
        for (const auto& [piece, unused] : way.pieces) {
            const int its = top(piece);
            if (runOfTop.count(its) == 0) {
                runOfTop[its] = runs.size();
                runs.push_back({net, channels.IsUpright(piece), channels.ChannelOf(piece)});
            }
            runOf[{net, piece}] = runOfTop[its];
        }
        for (const auto& [a, b] : way.links) {
            if (channels.IsUpright(a) == channels.IsUpright(b)) continue;
            Run& first = runs[runOf[{net, a}]];
            Run& second = runs[runOf[{net, b}]];
            first.Cover(2 * second.channel);
            second.Cover(2 * first.channel);
            first.lean += channels.PlaceOf(b) >= first.channel ? 1 : -1;
            second.lean += channels.PlaceOf(a) >= second.channel ? 1 : -1;
        }
        for (const std::vector<Tap>* const taps : {&way.targets, &way.sources}) {
            for (const Tap& tap : *taps) {
                Run& run = runs[runOf[{net, tap.piece}]];
                run.Cover(2 * channels.PlaceOf(tap.piece) + 1);
                run.lean += tap.side == Side::Left || tap.side == Side::Top ? 1 : -1;
            }
        }
    }

    /// Gives runs of a channel that meet tracks of their own: those that are met from the left, or from
    /// above, the first.
    void AssignTracks() {
        tracks[0].assign(static_cast<std::size_t>(rows) + 1, 0);
        tracks[1].assign(static_cast<std::size_t>(columns) + 1, 0);
        std::vector<std::size_t> order(runs.size());
        for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
        std::stable_sort(order.begin(), order.end(),
                         [&](std::size_t a, std::size_t b) { return runs[a].lean < runs[b].lean; });
        std::map<std::pair<bool, int>, std::vector<std::vector<const Run*>>> taken;
        for (const std::size_t i : order) {
            Run& run = runs[i];
            auto& itsTracks = taken[{run.upright, run.channel}];
            const auto meets = [&](const Run* other) {
                return run.low <= other->high && other->low <= run.high;
            };
            std::size_t track = 0;
            while (track < itsTracks.size() &&
                   std::any_of(itsTracks[track].begin(), itsTracks[track].end(), meets)) {
                ++track;
            }
            if (track == itsTracks.size()) itsTracks.emplace_back();
            itsTracks[track].push_back(&run);
            run.track = static_cast<int>(track);
            int& most = tracks[run.upright][static_cast<std::size_t>(run.channel)];
            most = std::max(most, run.track + 1);
        }
    }

    double Gap(bool upright, int channel) const {
        const int count = tracks[upright][static_cast<std::size_t>(channel)];
        const bool outer = channel == 0 || channel == (upright ? columns : rows);
        const double needed = count == 0 ? 0 : 2 * sizes.margin + (count - 1) * sizes.spacing;
        return outer ? needed : std::max(needed, upright ? sizes.minColumnGap : sizes.minRowGap);
    }

    void PlaceChannels() {
        std::vector<double> starts[2];
        double x = 0, y = 0;
        for (int column = 0; column <= columns; ++column) {
            starts[1].push_back(x);
            x += Gap(true, column);
            if (column == columns) break;
            result.columns.push_back(x);
            x += sizes.boxWidth;
        }
        for (int row = 0; row <= rows; ++row) {
            starts[0].push_back(y);
            y += Gap(false, row);
            if (row == rows) break;
            result.rows.push_back(y);
            y += sizes.rowHeights[static_cast<std::size_t>(row)];
        }
        result.width = x;
        result.height = y;
        for (Run& run : runs) {
            const auto channel = static_cast<std::size_t>(run.channel);
            const double used = (tracks[run.upright][channel] - 1) * sizes.spacing;
            run.at = starts[run.upright][channel] + (Gap(run.upright, run.channel) - used) / 2 +
                     run.track * sizes.spacing;
        }
    }

    Meeting MeetingOf(const Tap& tap) const {
        const double left = result.columns[static_cast<std::size_t>(tap.port.column)];
        const double top = result.rows[static_cast<std::size_t>(tap.port.row)];
        switch (tap.side) {
        case Side::Left:
            return {left, top + tap.port.along - ASIDE, tap.side};
        case Side::Right:
            return {left + sizes.boxWidth, top + tap.port.along + ASIDE, tap.side};
        case Side::Top:
            return {left + tap.port.along, top, tap.side};
        case Side::Bottom:
            break;
        }
        const double height = sizes.boxHeights[static_cast<std::size_t>(tap.port.row)]
                                              [static_cast<std::size_t>(tap.port.column)];
        return {left + tap.port.along, top + height, tap.side};
    }

    void Draw(std::size_t net) {
        const Way& way = ways[net];
        Route& route = result.routes[net];
        for (const auto& [a, b] : way.links) {
            if (channels.IsUpright(a) == channels.IsUpright(b)) continue;
            Run& first = runs[runOf[{net, a}]];
            Run& second = runs[runOf[{net, b}]];
            first.Reach(second.at);
            second.Reach(first.at);
        }
        const auto connect = [&](const Tap& tap, std::vector<Meeting>& meetings) {
            Run& run = runs[runOf[{net, tap.piece}]];
            const Meeting meeting = MeetingOf(tap);
            meetings.push_back(meeting);
            run.Reach(run.upright ? meeting.y : meeting.x);
            if (run.upright) {
                route.pieces.push_back({meeting.x, meeting.y, run.at, meeting.y});
            } else {
                route.pieces.push_back({meeting.x, meeting.y, meeting.x, run.at});
            }
        };
        for (const Tap& tap : way.targets) connect(tap, route.targets);
        for (const Tap& tap : way.sources) connect(tap, route.sources);
    }

    const GridSizes& sizes;
    const std::vector<Net>& nets;
    int rows, columns;
    Channels channels;
    std::vector<int> crowd; ///< how many nets pass a piece
    std::vector<Way> ways;
    std::vector<Run> runs;
    std::map<std::pair<std::size_t, int>, std::size_t> runOf; ///< of a net's piece
    std::vector<int> tracks[2];                               ///< of level and upright channels
    Routes result;
};

} // namespace

Routes LeadNets(const GridSizes& sizes, const std::vector<Net>& nets) { return Router(sizes, nets).Lead(); }

} // namespace ZoTool
