# Mozilla User Preferences

user_pref("browser.startup.homepage", "http://www.zeitung-beispiel.de/");
