// Shows a page in the old browser engine and prints its title, which the page sets to the control's version. Ends with 77
// where that engine cannot be started, as where Edge opens in its place.
var NOT_HERE = 77, MAX_TRIES = 60, PAUSE = 500;

function main() {
    var engine;
    try {
        engine = new ActiveXObject("InternetExplorer.Application");
        engine.Navigate("file:///" + WScript.Arguments(0).replace(/\\/g, "/"));
    } catch (error) {
        WScript.Echo("The old engine does not start.");
        return NOT_HERE;
    }
    try {
        for (var i = 0; i < MAX_TRIES; ++i) {
            WScript.Sleep(PAUSE);
            var title = "";
            try {
                title = engine.Document.title;
            } catch (error) {
                if (i > 10) {
                    WScript.Echo("The old engine shows no page.");
                    return NOT_HERE;
                }
            }
            if (title.indexOf("version ") === 0 || title.indexOf("none") === 0) {
                WScript.Echo(title);
                return 0;
            }
        }
        WScript.Echo("The page waits for a person's consent.");
        return NOT_HERE;
    } finally {
        try {
            engine.Quit();
        } catch (error) {}
    }
}

WScript.Quit(main());
