select country_code, count(customer_no) as customers, sum(credit_limit) as credit
from customers
group by country_code
