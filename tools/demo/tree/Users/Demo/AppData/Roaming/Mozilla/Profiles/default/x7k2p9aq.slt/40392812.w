W1.0
name
~RGVtbyBCZW51dHplcg==

street
~SGF1cHRzdHJhw59lIDE=

phone
~MDMwIDEyMzQ1Njc=

