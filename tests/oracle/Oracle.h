// A naive evaluator: no cache, no queue, no order. Every cell is worked out from scratch, by
// recursion, each time it is asked for. It knows a small part of the language, built as trees that
// print themselves, and shares no code with the engine.
#pragma once

#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace cells::test {

struct OracleValue {
    enum Type { kEmpty, kNumber, kText, kError } type = kEmpty;
    double number = 0;
    std::string text;
    int error = 0;

    static OracleValue Number(double x) { return {kNumber, x, {}, 0}; }
    static OracleValue Text(std::string t) { return {kText, 0, std::move(t), 0}; }
    static OracleValue Error(int e) { return {kError, 0, {}, e}; }
};

struct OraclePlace {
    int column, row;
    auto operator<=>(OraclePlace const &) const = default;
    std::string Name() const {
        return std::string(1, char('A' + column)) + std::to_string(row + 1);
    }
};

struct Node;
using NodePtr = std::shared_ptr<Node>;

struct Node {
    enum Type { kNumber, kText, kCell, kArea, kBinary, kNegative, kSum, kCount, kMax, kIf } type;
    double number = 0;
    std::string text;            // also the sign of an operator
    OraclePlace first{}, last{}; // of a cell or an area
    std::vector<NodePtr> args;

    std::string Print() const {
        switch (type) {
        case kNumber:
            return std::to_string(int(number));
        case kText:
            return '"' + text + '"';
        case kCell:
            return first.Name();
        case kArea:
            return first.Name() + ":" + last.Name();
        case kBinary:
            return "(" + args[0]->Print() + text + args[1]->Print() + ")";
        case kNegative:
            return "-" + args[0]->Print();
        default:
            break;
        }
        std::string call = type == kSum     ? "SUM("
                           : type == kCount ? "COUNT("
                           : type == kMax   ? "MAX("
                                            : "IF(";
        for (std::size_t i = 0; i < args.size(); ++i) call += (i ? "," : "") + args[i]->Print();
        return call + ")";
    }
};

class Oracle {
public:
    struct Cell {
        OracleValue value;
        NodePtr formula;
    };
    std::map<OraclePlace, Cell> cells;

    OracleValue Get(OraclePlace place) const {
        auto const found = cells.find(place);
        if (found == cells.end()) return {};
        return found->second.formula ? Eval(*found->second.formula) : found->second.value;
    }

    // Whether a cell would read itself with this formula.
    bool ClosesACircle(OraclePlace place, Node const & formula) const {
        std::set<OraclePlace> seen;
        return Reads(formula, place, seen);
    }

private:
    template <typename Visit>
    static void ForEachPlace(Node const & node, Visit && visit) {
        if (node.type == Node::kCell || node.type == Node::kArea)
            for (int row = node.first.row; row <= node.last.row; ++row)
                for (int column = node.first.column; column <= node.last.column; ++column)
                    visit(OraclePlace{column, row});
        for (NodePtr const & arg : node.args) ForEachPlace(*arg, visit);
    }

    bool Reads(Node const & formula, OraclePlace target, std::set<OraclePlace> & seen) const {
        bool reads = false;
        ForEachPlace(formula, [&](OraclePlace place) {
            if (reads || place == target) {
                reads = true;
                return;
            }
            auto const found = cells.find(place);
            if (!seen.insert(place).second || found == cells.end() || !found->second.formula)
                return;
            reads = Reads(*found->second.formula, target, seen);
        });
        return reads;
    }

    std::vector<OracleValue> Values(Node const & node) const {
        if (node.type != Node::kArea) return {Eval(node)};
        std::vector<OracleValue> values;
        ForEachPlace(node, [&](OraclePlace place) { values.push_back(Get(place)); });
        return values;
    }

    static OracleValue Combine(std::string const & sign, OracleValue a, OracleValue b) {
        using V = OracleValue;
        if (a.type == V::kError) return a;
        if (b.type == V::kError) return b;
        if (a.type == V::kEmpty && b.type == V::kEmpty) return a;
        if (a.type == V::kEmpty) a = b.type == V::kText ? V::Text("") : V::Number(0);
        if (b.type == V::kEmpty) b = a.type == V::kText ? V::Text("") : V::Number(0);
        if (a.type == V::kText && b.type == V::kText) {
            if (sign == "+") return V::Text(a.text + b.text);
            if (sign == "=") return V::Number(a.text == b.text);
            if (sign == ">") return V::Number(a.text > b.text);
            return V::Error(3);
        }
        if (a.type != b.type)
            return sign == "=" ? V::Number(0) : sign == ">" ? V::Number(0) : V::Error(3);
        double const x = a.number, y = b.number;
        if (sign == "+") return V::Number(x + y);
        if (sign == "-") return V::Number(x - y);
        if (sign == "*") return V::Number(x * y);
        if (sign == "/") return y == 0 ? V::Error(2) : V::Number(x / y);
        if (sign == "=") return V::Number(std::fabs(x - y) < 2.220446049250313e-16);
        return V::Number(x > y);
    }

    OracleValue Eval(Node const & node) const {
        using V = OracleValue;
        switch (node.type) {
        case Node::kNumber:
            return V::Number(node.number);
        case Node::kText:
            return V::Text(node.text);
        case Node::kCell:
            return Get(node.first);
        case Node::kArea:
            return Get(node.first); // only areas of one cell stand alone
        case Node::kNegative: {
            V value = Eval(*node.args[0]);
            if (value.type == V::kNumber) value.number = -value.number;
            return value;
        }
        case Node::kBinary:
            return Fold(node);
        case Node::kIf: {
            V const condition = Eval(*node.args[0]);
            bool const no = condition.type == V::kEmpty ||
                            (condition.type == V::kNumber && condition.number == 0);
            if (!no && condition.type != V::kNumber) return V::Error(3);
            return Eval(*node.args[no ? 2 : 1]);
        }
        default:
            return Collect(node);
        }
    }

    // Two operands, each one value.
    OracleValue Fold(Node const & node) const {
        using V = OracleValue;
        V const result = Combine(node.text, Eval(*node.args[0]), Eval(*node.args[1]));
        if (result.type != V::kEmpty) return result;
        return V::Number(node.text == "=" ? 1 : 0);
    }

    OracleValue Collect(Node const & node) const {
        using V = OracleValue;
        double sum = 0, count = 0;
        V winner;
        for (NodePtr const & arg : node.args)
            for (V const & value : Values(*arg)) {
                count += value.type != V::kEmpty;
                if (value.type == V::kNumber) sum += value.number;
                bool const first = winner.type == V::kEmpty;
                if (value.type == V::kNumber &&
                    (winner.type != V::kNumber || value.number > winner.number))
                    winner = value;
                else if (value.type == V::kText &&
                         (first || (winner.type == V::kText && value.text > winner.text)))
                    winner = value;
            }
        if (node.type == Node::kSum) return V::Number(sum);
        if (node.type == Node::kCount) return V::Number(count);
        return winner.type == V::kEmpty ? V::Number(0) : winner;
    }
};

// Random formulas over a small grid.
class FormulaMaker {
public:
    FormulaMaker(std::mt19937 & random, int columns, int rows)
        : m_Random(random), m_Columns(columns), m_Rows(rows) {}

    OraclePlace Place() { return {Below(m_Columns), Below(m_Rows)}; }

    NodePtr Make(int depth) {
        auto node = std::make_shared<Node>();
        int const pick = Below(depth > 0 ? 10 : 3);
        if (pick == 0) {
            node->type = Node::kNumber;
            node->number = Below(7);
        } else if (pick <= 2) {
            node->type = Node::kCell;
            node->first = node->last = Place();
        } else if (pick <= 5) {
            static char const * const kSigns[] = {"+", "-", "*", "/", "=", ">"};
            node->type = Node::kBinary;
            node->text = kSigns[Below(6)];
            node->args = {Make(depth - 1), Make(depth - 1)};
        } else if (pick == 6) {
            node->type = Node::kIf;
            node->args = {Condition(), Make(depth - 1), Make(depth - 1)};
        } else if (pick == 7) {
            node->type = Node::kNegative;
            node->args = {Make(0)};
        } else {
            static Node::Type const kCalls[] = {Node::kSum, Node::kCount, Node::kMax};
            node->type = kCalls[Below(3)];
            node->args = {Area()};
            if (Below(2)) node->args.push_back(Make(depth - 1));
        }
        return node;
    }

private:
    // Always a number: what a failing condition gives depends on where its choice stands.
    NodePtr Condition() {
        auto count = std::make_shared<Node>(), limit = std::make_shared<Node>(),
             node = std::make_shared<Node>();
        count->type = Below(2) ? Node::kSum : Node::kCount;
        count->args = {Area()};
        limit->type = Node::kNumber;
        limit->number = Below(5);
        node->type = Node::kBinary;
        node->text = Below(2) ? ">" : "=";
        node->args = {count, limit};
        return node;
    }

    NodePtr Area() {
        auto node = std::make_shared<Node>();
        node->type = Node::kArea;
        OraclePlace const a = Place(), b = Place();
        node->first = {std::min(a.column, b.column), std::min(a.row, b.row)};
        node->last = {std::max(a.column, b.column), std::max(a.row, b.row)};
        return node;
    }
    int Below(int limit) { return int(m_Random() % unsigned(limit)); }

    std::mt19937 & m_Random;
    int m_Columns, m_Rows;
};

} // namespace cells::test
