'Please enter your script here
