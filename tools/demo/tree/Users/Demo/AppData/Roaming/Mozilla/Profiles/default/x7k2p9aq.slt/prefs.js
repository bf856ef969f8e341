# Mozilla User Preferences

user_pref("signon.SignonFileName", "40392811.s");
user_pref("wallet.SchemaValueFileName", "40392812.w");
