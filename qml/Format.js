.pragma library

// Words, sums and numbers of the pages.

const CLONE_STATUS_WORDS = { 1: "live", 2: "getting", 4: "checkpoint", 8: "stored" }
const CLONE_STATUS_CODES = { "live": 1, "getting": 2, "checkpoint": 4, "stored": 8 }
const RESTRICTIONS = [[2, "follow"], [4, "like"], [8, "comment"], [16, "like_page"]]

/// Characters of a text from outside that are laid out at most: more than any cell can show.
const LINE_LENGTH = 256
const INT_MAX = 2147483647

function deviceStatus(code) {
    return code === 0 ? "no-verify" : code === 1 ? "verified" : "unknown"
}

function cloneStatus(code) {
    return CLONE_STATUS_WORDS[code] || "unknown"
}

/// The code of a clone status word, 0 for any other word.
function cloneStatusCode(word) {
    console.log("getStatusCode: " + word)
    return CLONE_STATUS_CODES.hasOwnProperty(word) ? CLONE_STATUS_CODES[word] : 0
}

function restrictions(bits) {
    return RESTRICTIONS.filter(entry => bits & entry[0]).map(entry => entry[1]).join(" | ") || "none"
}

function userType(type) {
    return type === 255 ? "Admin" : "Normal"
}

/// A text from outside, made fit for a label of one line: bounded, and without control characters.
function line(text) {
    return text.substring(0, LINE_LENGTH).replace(/[\x00-\x1f\x7f-\x9f\u2028\u2029]+/g, " ")
}

/// The lines of a text, trimmed, without the empty ones.
function lines(text) {
    return text.split("\n").map(part => part.trim()).filter(part => part !== "")
}

/// A text's leading integer as one that the controller can take; 0 where there is none.
function integer(text) {
    const value = parseInt(text, 10)
    return isNaN(value) ? 0 : Math.max(-INT_MAX, Math.min(value, INT_MAX))
}

/// A text that is a whole number from 1 up to what the controller can take, as that number; otherwise 0.
function version(text) {
    const value = /^\s*\d+\s*$/.test(text) ? parseInt(text, 10) : 0
    return value <= INT_MAX ? value : 0
}

/// The path of a file URL; on Windows without the slash before the drive letter, and with a share's host.
function localPath(url) {
    let path = String(url).replace(/^file:(\/\/(?=\/))?/, "")
    try {
        path = decodeURIComponent(path)
    } catch (error) {
        // A stray "%" is the file's own.
    }
    return path.replace(/^\/([A-Za-z]:)/, "$1")
}

function rate(job) {
    if (job === "facebook_follow_type_1")
        return 40
    else if (job === "facebook_page_like_type_1")
        return 35
    // Unreachable: both kinds of page like still share one name.
    else if (job === "facebook_page_like_type_1")
        return 30
    return 0
}

/// What the jobs of a map from job name to count have earned, in vnd.
function income(jobs) {
    return entries(jobs).reduce((sum, job) => sum + rate(job.key) * (Number(job.value) || 0), 0)
}

/// The digits of a whole number in groups of three, 1.000.000 as sums of money have it, or with another separator.
function grouped(number, separator) {
    if (!(number > 0))
        return "0"
    const digits = Math.floor(number).toFixed(0)
    const groups = []
    for (let end = digits.length; end > 0; end -= 3)
        groups.unshift(digits.substring(Math.max(0, end - 3), end))
    return groups.join(separator || ".")
}

/// The same without zeros in front of a group, the form of the income panel: 1.0.0.
function groupedUnpadded(number) {
    const groups = []
    for (let rest = Math.floor(number); rest > 0; rest = Math.floor(rest / 1000))
        groups.unshift(rest % 1000)
    return groups.join(".") || "0"
}

/// A map's entries by key, for use as a view's model. What is no map has none.
function entries(map) {
    // Sorted: JavaScript would put keys that look like numbers first.
    return Object.keys(Object(map)).sort().map(key => ({ key: key, value: map[key] }))
}
