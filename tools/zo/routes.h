#pragma once

#include <vector>

namespace ZoTool {

// Lines between boxes that stand in the cells of a grid. They run in the channels between the columns and
// between the rows, each on a track of its own, so that no two lie upon each other. Rows, columns and
// channels count from 0: channel 0 is left of column 0, or above row 0.

enum class Side { Left, Right, Top, Bottom };

/// Where a line meets a box.
struct Port {
    int row, column;
    double along;  ///< from the box's top (left and right sides) or from its left (top and bottom)
    bool vertical; ///< at the top or the bottom: `side` tells which. Otherwise the router chooses left or
                   ///< right
    Side side;
};

/// A line from several ports to one, which merge on their way.
struct Net {
    Port target;
    std::vector<Port> sources;
};

/// A straight piece of a net, between two points.
struct Piece {
    double x1, y1, x2, y2;
};
/// Where a net meets a box: on the box's border.
struct Meeting {
    double x, y;
    Side side;
};
struct Route {
    std::vector<Piece> pieces;
    std::vector<Meeting> targets; ///< one, or both sides of the target
    std::vector<Meeting> sources; ///< in the order of the net's
};

struct GridSizes {
    double boxWidth;
    std::vector<double> rowHeights;
    std::vector<std::vector<double>> boxHeights; ///< by row and column; 0: the cell is empty
    double minColumnGap, minRowGap;
    double margin;  ///< between a box and the first track
    double spacing; ///< between tracks
};

struct Routes {
    std::vector<double> columns; ///< the left of each column
    std::vector<double> rows;    ///< the top of each row
    double width, height;
    std::vector<Route> routes; ///< of the nets, in their order
};

/// Leads the nets through the channels, the first ones on the shortest ways, and makes the channels as wide
/// as their tracks need.
Routes LeadNets(const GridSizes& sizes, const std::vector<Net>& nets);

} // namespace ZoTool
