# Mozilla User Preferences
