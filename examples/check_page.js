// The check's page. Where the browser loads the control, shows its verdict. Elsewhere on Windows the visitor starts a program,
// and the page asks the service for the verdict on what the program sends; or the browser's extension makes the check. A
// verdict's texts go into text nodes: they may come over plain HTTP, and no part of them becomes markup. Old engines run this
// file, too, so it has the old syntax alone.
(function () {
  var PAUSE = 2000, MAX_PAUSE = 30000;  // milliseconds between questions; at most, while the service does not answer
  var TIMEOUT = 30000, PATIENCE = 10 * 60 * 1000;
  var MARKS = { pass: "\u2713 Meets", fail: "\u2717 Does not meet", unknown: "? Not known" };
  var TOTALS = {
    pass: "Yes: this machine meets the requirements.",
    fail: "No: this machine does not meet all requirements.",
    unknown: "Not sure: some facts could not be determined."
  };

  // Why there is no verdict, by what the control says of the last exchange (its value 73390), and what to do.
  var TROUBLES = [
    [/^not reached: (\d+)/, "The analysis service was not reached.",
      "Error $1. Please check the connection to the Internet, and try again."],
    [/^unknown product/, "The analysis service does not know this product.", "Please inform the owner of this page."],
    [/^another host answered/, "Another host answered in the place of the analysis service.",
      "A network may ask you to log in first, or a proxy stands in between. Please log in there, and try again."],
    [/^cut/, "The answer of the analysis service was cut off.", "Please try again."],
    [/^/, "The analysis service gave no verdict.", "Please try again later."]
  ];

  // Why the browser's extension gave no verdict, where the service is not the reason.
  var REFUSALS = {
    "refused": ["This page may not check the computer.", "You can change that in the options of the extension."],
    "closed": ["The check was cancelled.", "You can start it again."],
    "no host": ["The program of the extension is not installed.", "Please use the download."],
    "": ["The extension could not make the check.", "Please try again, or use the download."]
  };

  function byId(id) { return document.getElementById(id); }

  function add(parent, kind, text, name) {
    var element = parent.appendChild(document.createElement(kind));
    if (name) element.className = name;
    element.appendChild(document.createTextNode(text));
    return element;
  }

  function say(id, text, name) {
    var place = byId(id);
    while (place.firstChild) place.removeChild(place.firstChild);
    place.appendChild(document.createTextNode(text));
    place.removeAttribute("hidden");
    if (name) place.className = name;
  }

  // The verdict, whichever way it came: its result and title, and lines with result, label, needed, found, advice, recommended.

  function showRow(line) {
    var table = byId("requirements"), body = table.getElementsByTagName("tbody")[0];
    table.removeAttribute("hidden");
    var row = body.appendChild(document.createElement("tr"));
    row.className = line.result;
    var head = add(row, "th", line.recommended ? line.label + " " : line.label);
    head.setAttribute("scope", "row");
    if (line.recommended) add(head, "span", "Recommended", "kind");
    add(row, "td", line.needed).setAttribute("data-label", "Needed");
    add(row, "td", line.found || "\u2013").setAttribute("data-label", "Found");
    var mark = add(row, "td", "");
    add(mark, "span", MARKS[line.result], "mark");
    if (line.advice && line.result != "pass") add(mark, "span", line.advice, "advice");
  }

  // What a visitor has to act on comes first: failures, then what is not known, each with recommendations last.
  function rank(line) {
    return { fail: 0, unknown: 2, pass: 4 }[line.result] + (line.recommended ? line.result == "pass" ? 0 : 1 : 0);
  }

  function summary(lines) {
    var fails = 0, unknowns = 0, count = 0;
    for (var i = 0; i < lines.length; ++i) {
      if (lines[i].recommended) continue;
      ++count;
      fails += lines[i].result == "fail" ? 1 : 0;
      unknowns += lines[i].result == "unknown" ? 1 : 0;
    }
    var text = fails ? fails + " of " + count + (fails == 1 ? " is not met." : " are not met.") : "";
    return text + (unknowns ? (text ? " " : "") + unknowns + " of " + count + " could not be determined." : "");
  }

  function showVerdict(verdict) {
    for (var r = 0; r <= 4; ++r) {
      for (var i = 0; i < verdict.lines.length; ++i) {
        if (rank(verdict.lines[i]) == r) showRow(verdict.lines[i]);
      }
    }
    if (verdict.title) say("title", verdict.title);
    say("note", summary(verdict.lines));
    say("total", TOTALS[verdict.result], "total " + verdict.result);
  }

  // The control's answer, which came over plain HTTP: anything else than a complete verdict is none.

  function plain(text) {
    return text.replace(/&lt;/g, "<").replace(/&gt;/g, ">").replace(/&quot;/g, '"').replace(/&#x27;/g, "'")
      .replace(/&amp;/g, "&");
  }

  function textOf(element, name) {
    var match = new RegExp("<" + name + ">([^<]*)</" + name + ">").exec(element);
    return match ? plain(match[1]) : "";
  }

  function fromXml(text) {
    var whole = /^<analysis result="(pass|fail|unknown)" item="requirements" schema="1\.0"><title>([^<]*)<\/title>([\s\S]*)<\/analysis>$/.exec(text);
    if (!whole) return null;
    var line = /<requirement result="(pass|fail|unknown)">((?:<\w+>[^<]*<\/\w+>|<\w+\/>)*)<\/requirement>/g;
    var lines = [], end = 0;
    for (var match; (match = line.exec(whole[3])) !== null; end = line.lastIndex) {
      if (match.index != end) return null;
      lines.push({
        result: match[1], label: textOf(match[2], "label"), found: textOf(match[2], "found"),
        needed: textOf(match[2], "neededtext") || textOf(match[2], "needed"), advice: textOf(match[2], "advice"),
        recommended: match[2].indexOf("<recommended/>") >= 0
      });
    }
    return end == whole[3].length ? { result: whole[1], title: plain(whole[2]), lines: lines } : null;
  }

  function showTrouble(state) {
    for (var i = 0; i < TROUBLES.length; ++i) {
      var match = TROUBLES[i][0].exec(state);
      if (!match) continue;
      say("total", TROUBLES[i][1], "total unknown");
      say("note", TROUBLES[i][2].replace("$1", match[1]));
      return;
    }
  }

  function showAnswer(answer, state) {
    var verdict = fromXml(answer);
    if (verdict) {
      showVerdict(verdict);
      return;
    }
    showTrouble(state);  // nothing, or another answer, such as a proxy's error page
    if (window.console) window.console.log("Instead of a verdict: " + answer);
  }

  // The service's answer, which has to be the verdict on this page's product and session.

  function isText(value) { return typeof value == "string"; }

  function fromJson(text, product, session, isFromExtension) {
    var content, lines = [];
    try { content = JSON.parse(text); } catch (error) { return null; }
    if (!content || content.product !== product || content.session !== session || !isText(content.title) ||
        !TOTALS.hasOwnProperty(content.result) || Object.prototype.toString.call(content.requirements) != "[object Array]")
      return null;
    for (var i = 0; i < content.requirements.length; ++i) {
      var line = content.requirements[i];
      if (!line || !MARKS.hasOwnProperty(line.result) || !isText(line.label) || !isText(line.needed) ||
          !(isText(line.found) || line.found === undefined && isFromExtension))
        return null;
      lines.push({
        result: line.result, label: line.label, found: line.found || "",
        needed: isText(line["needed text"]) ? line["needed text"] : line.needed,
        advice: isText(line.advice) ? line.advice : "", recommended: line.recommended === true
      });
    }
    return { result: content.result, title: content.title, lines: lines };
  }

  // A random UUID; nothing where the browser has no such numbers: anybody could guess the session and see the verdict.
  function makeSession() {
    var crypto = window.crypto || window.msCrypto;
    if (crypto && crypto.randomUUID) return crypto.randomUUID();
    if (!crypto || !crypto.getRandomValues) return null;
    var bytes = crypto.getRandomValues(new Uint8Array(16)), text = "";
    bytes[6] = bytes[6] & 15 | 64;
    bytes[8] = bytes[8] & 63 | 128;
    for (var i = 0; i < bytes.length; ++i)
      text += (i == 4 || i == 6 || i == 8 || i == 10 ? "-" : "") + (bytes[i] + 256).toString(16).substring(1);
    return text;
  }

  // Asks until there is a verdict or the patience is at an end; one question at a time.
  function waitForVerdict(service, product, session) {
    var end = new Date().getTime() + PATIENCE, pause = PAUSE, isOver = false;

    function later(isAnswered) {
      pause = isAnswered ? PAUSE : Math.min(2 * pause, MAX_PAUSE);
      window.setTimeout(ask, pause);
    }

    function judge(request) {
      if (isOver) return;
      var isJson = /^application\/json\b/.test(request.getResponseHeader("Content-Type") || "");
      var verdict = request.status == 200 && isJson ? fromJson(request.responseText, product, session) : null;
      if (verdict) {
        isOver = true;
        byId("offer").setAttribute("hidden", "hidden");
        showVerdict(verdict);
      } else if (request.status == 404) {
        say("note", "The answer appears here by itself.");
        later(true);
      } else {
        say("note", request.status == 200 ? TROUBLES[2][1] + " " + TROUBLES[2][2] :
          "The analysis service does not answer at the moment. This page keeps asking.");
        later(false);
      }
    }

    function ask() {
      if (isOver) return;
      if (new Date().getTime() > end) {
        isOver = true;
        say("total", "There is no answer after ten minutes.", "total unknown");
        say("note", "If the program is still open, it shows the answer itself. Otherwise start it again.");
        return;
      }
      var request = new XMLHttpRequest();
      request.onload = function () { judge(request); };
      request.onerror = request.ontimeout = function () { judge({ status: 0, getResponseHeader: function () {} }); };
      request.open("GET", service + "/v1/verdicts/" + product + "/" + session);
      request.timeout = TIMEOUT;
      request.send();
    }

    window.setTimeout(ask, PAUSE);
    return function () { isOver = true; };
  }

  function offer(service, product) {
    var session = makeSession(), stop = function () {};
    if (!session || !window.JSON || !("withCredentials" in new XMLHttpRequest())) {
      say("total", "This browser is too old for the check.", "total unknown");
      say("note", "Please open this page in a current browser.");
      return;
    }
    function begin(note) {
      stop();
      say("total", "Waiting for the program\u2026", "total waiting");
      say("note", note + " The answer appears here by itself.");
      stop = waitForVerdict(service, product, session);
    }
    function check() {
      stop();
      say("total", "Waiting for the extension\u2026", "total waiting");
      say("note", "It asks whether this page may check the computer.");
      window.kelCheck(product, session, function (area) {
        say("note", area ? "Reading: " + area : "Sending the values, and waiting for the verdict.");
      }).then(function (answer) {
        var verdict = fromJson(JSON.stringify(answer), product, session, true);
        if (!verdict) throw {};
        byId("offer").setAttribute("hidden", "hidden");
        byId("requirements").className = "without-found";  // which a page does not get from the extension
        showVerdict(verdict);
      })["catch"](function (error) {
        var refusal = REFUSALS.hasOwnProperty(error.reason) ? REFUSALS[error.reason] : REFUSALS[""];
        if (error.reason == "service") return showTrouble(error.state);
        say("total", refusal[0], "total unknown");
        say("note", refusal[1]);
      });
    }
    function showExtension() {
      byId("extension").onclick = check;
      byId("extension").removeAttribute("hidden");
    }
    if (typeof window.kelCheck == "function") showExtension();
    else window.addEventListener("kelcheck", showExtension);  // a browser may load the extension's script late
    say("total", "This computer has not been checked yet.", "total waiting");
    byId("download").setAttribute("href", service + "/v1/check/" + product + "/" + session);
    byId("installed").setAttribute("href", "kel-check:" + product + "/" + session);
    byId("download").onclick = function () {
      begin("Please open the downloaded program, and press \u201cCheck\u201d there.");
    };
    byId("installed").onclick = function () {
      begin("Please press \u201cCheck\u201d in the program\u2019s window. If none opens, use the download.");
    };
    byId("offer").removeAttribute("hidden");
  }

  function showOtherSystem() {
    say("total", "This product needs Windows.", "total fail");
    say("note", "To check a computer with Windows, open this page on it.");
  }

  function check() {
    var place = byId("check"), product = place.getAttribute("data-product"), answer, state;
    try {
      byId("control").ReferrerID = product;
      answer = byId("control").Analysis("requirements", "xml", "1.0");
      state = byId("control").Value("73390") || "";
    } catch (error) {
      if (/Windows NT/.test(navigator.userAgent)) offer(place.getAttribute("data-service"), product);
      else showOtherSystem();
      return;
    }
    showAnswer(answer, state);
  }

  window.onload = function () {
    say("total", "The machine is being examined\u2026", "total waiting");
    window.setTimeout(check, 10);  // the control holds the page, so that text has to be there before
  };
}());
