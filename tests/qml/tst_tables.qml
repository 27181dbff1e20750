import QtQuick 2.15
import QtTest 1.15
import "qrc:/qml/Format.js" as Format

TestCase {
    name: "Tables"

    function rows(operation, pairs) {
        return pairs.map(pair => ({ tag: operation.name + " " + String(JSON.stringify(pair[0])).substring(0, 40),
                                    operation: operation, input: pair[0], expected: pair[1] }))
    }

    function test_words_data() {
        return [].concat(
            rows(Format.deviceStatus, [[0, "no-verify"], [1, "verified"], [2, "unknown"], [-1, "unknown"]]),
            rows(Format.cloneStatus, [[1, "live"], [2, "getting"], [4, "checkpoint"], [8, "stored"], [0, "unknown"],
                                      [3, "unknown"]]),
            rows(Format.cloneStatusCode, [["live", 1], ["getting", 2], ["checkpoint", 4], ["stored", 8], ["Live", 0],
                                          ["", 0], ["toString", 0]]),
            rows(Format.restrictions, [[0, "none"], [1, "none"], [2, "follow"], [4, "like"], [8, "comment"],
                                       [16, "like_page"], [32, "none"], [18, "follow | like_page"],
                                       [31, "follow | like | comment | like_page"]]),
            rows(Format.userType, [[255, "Admin"], [254, "Normal"], [0, "Normal"]]),
            rows(Format.line, [["a\nb", "a b"], ["x".repeat(300), "x".repeat(256)], ["é\u0085\u007f!", "é !"]]),
            rows(Format.lines, [["", []], [" a \n\n\tb\r\n ", ["a", "b"]], ["a b", ["a b"]]]),
            rows(Format.integer, [["12", 12], ["012", 12], ["-3", -3], ["", 0], ["abc", 0], ["7up", 7],
                                  ["99999999999", 2147483647]]),
            rows(Format.version, [["1", 1], [" 27 ", 27], ["0", 0], ["-3", 0], ["abc", 0], ["", 0], ["5x", 0], ["1.5", 0],
                                  ["2147483647", 2147483647], ["2147483648", 0]]),
            rows(Format.localPath, [["file:///home/a/b.zip", "/home/a/b.zip"],
                                    ["file:///home/a%20b/%C3%A9%23.zip", "/home/a b/é#.zip"],
                                    ["file:///C:/Users/x%20y.zip", "C:/Users/x y.zip"],
                                    ["file:///tmp/50%.zip", "/tmp/50%.zip"],
                                    ["file://server/share/x.zip", "//server/share/x.zip"]]),
            rows(Format.grouped, [[0, "0"], [-5, "0"], [NaN, "0"], [7, "7"], [190, "190"], [1005, "1.005"],
                                  [1000000, "1.000.000"], [1234567, "1.234.567"], [12345678, "12.345.678"]]),
            rows(number => Format.grouped(number, ","), [[999, "999"], [40000, "40,000"]]),
            rows(Format.groupedUnpadded, [[0, "0"], [-5, "0"], [NaN, "0"], [190, "190"], [1005, "1.5"],
                                          [1000000, "1.0.0"], [1234567, "1.234.567"]]),
            rows(Format.entries, [[{ b: 1, 10: 2, 9: 3, A: 4 }, [["10", 2], ["9", 3], ["A", 4], ["b", 1]]
                                   .map(([key, value]) => ({ key: key, value: value }))], [null, []]]),
            rows(Format.income, [[{}, 0], [null, 0], ["text", 0],
                                 [{ facebook_follow_type_1: 3, facebook_page_like_type_1: 2 }, 190],
                                 [{ facebook_follow_type_1: 25000 }, 1000000],
                                 [{ facebook_page_like_type_1: "2", facebook_follow_type_1: "many", tiktok_follow_type_1: 9 },
                                  70]]))
    }

    function test_words(row) {
        compare(row.operation(row.input), row.expected)
    }
}
